// SPDX-License-Identifier: MIT
// Registers read and written over a link and its cycle.
#pragma once

#include "host/cycle.h"
#include "host/register_access.h"
#include "host/reply_check.h"

#include <functional>

namespace dx4::host {

/// Queues each access in the driver and turns the cycle until it has ended, with ordinary condition
/// reads and writes.
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

    /// Why an access came to its end without a step of its own, in words.
    virtual QString whyDropped(int station) const;

private:
    AccessResult await(int station, const QString &what, int tag, int (Link::*waiting)() const);
    AccessResult outcome(const QString &what, Cycle::Step step) const;

    Link &m_link;
    const Cycle &m_cycle;
    Stepper m_step;
    Verdict m_verdict;
    int m_lastTag = 0; // counted downwards, apart from the tags that others count upwards
};

/// Of an access to a station that is left alone, in words.
QString notAskedText();

} // namespace dx4::host
