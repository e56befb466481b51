// SPDX-License-Identifier: MIT
// An exchange that knows how slow each station is, and takes whatever has the right length.
#pragma once

#include "host/exchange/exchange.h"
#include "late_plant.h"

/// What the guard's pace is compared with: no reply is late for it, and nothing is asked twice.
class ToldExchange : public dx4::host::Exchange {
public:
    explicit ToldExchange(LatePlant &plant)
        : m_plant(plant)
    {
    }

    dx4::host::Reply run(const FRAME_PRO &request) override;
    const dx4::host::ExchangeReport &report() const override { return m_report; }

private:
    LatePlant &m_plant;
    dx4::host::ExchangeReport m_report;
};
