// SPDX-License-Identifier: MIT
// Registers read and written over a link and its cycle.
#pragma once

#include "host/exchange/cycle.h"
#include "host/exchange/register_access.h"
#include "host/frames/reply_check.h"

#include <functional>
#include <optional>

namespace dx4::host {

/// Queues each access in the driver and turns the cycle until it has ended, with ordinary condition
/// reads and writes. A read that goes with a failed one, or whose place another read of the same
/// registers takes, is asked for again.
class CycleAccess : public RegisterAccess {
public:
    /// Judges the reply of the cycle's last step.
    using Verdict = std::function<ReplyVerdict()>;

    /// @param link, cycle  outlive this; the cycle is that link's
    /// @param verdict      needed where the exchange keeps refused replies from the cycle; by
    ///                     default the cycle's reply is looked at
    CycleAccess(Link &link, Cycle &cycle, Verdict verdict = {});

    int blockSize() const override { return m_link.settings().blockSize; }
    AccessResult read(int station, const QString &regType, int address, int count) override;
    AccessResult write(int station, const QString &regType, int address, quint16 value) override;

protected:
    using Stepper = std::function<Cycle::Step()>;

    /// @param step  one step of the cycle, with what else is to be done in one
    CycleAccess(Link &link, const Cycle &cycle, Stepper step, Verdict verdict);

    /// Whether the stepper passes over requests to this station.
    virtual bool isLeftAlone(int station) const;

private:
    std::optional<AccessResult> await(const QString &what, bool (Link::*waits)(int) const);
    AccessResult dropped(int station, const QString &what) const;
    AccessResult outcome(const QString &what, Cycle::Step step) const;

    Link &m_link;
    const Cycle &m_cycle;
    Stepper m_step;
    Verdict m_verdict;
    int m_lastTag = 0; // counted downwards, apart from the tags that others count upwards
};

} // namespace dx4::host
