// SPDX-License-Identifier: MIT
// Looks at the host after every step and writes down what must not happen.
#pragma once

#include "host/exchange/cycle.h"
#include "plant.h"

namespace dx4::faults {

/// What became of one write, as the host was told.
enum class Outcome { Waiting, Confirmed, Failed };

/// Compares what the host shows and says with what the plant held.
class Witness {
public:
    /// Listens to the link from now on. Both must outlive the witness.
    Witness(host::Link &link, Plant &plant);

    /// Writes values of the plant's choosing to registers that follow each other.
    void write(int station, const char *type, int address, int count);

    /// Writes one value of the caller's choosing.
    void writeValue(int station, const char *type, int address, int value);

    /// To be called after each step of the cycle.
    void look(host::Cycle::Step step, const FRAME_PRO &request);

    /// To be called when the line was good for long enough: everything must be as it should.
    void lookAtTheEnd();

    /// What was found, in words: "wrong value: ...", "lost write: ...", "silent change: ...",
    /// "no recovery: ...". A register that a read has shown as it was before its write was served
    /// changes without a report once the write is confirmed: "silent confirmation: ...".
    const std::vector<std::string> &findings() const { return m_findings; }

    /// Writes with this outcome.
    int writes(Outcome outcome) const;

    /// Registers that are polled and do not show what the plant holds, or are marked as failed.
    std::vector<std::string> unread();

private:
    struct Write {
        std::size_t first; ///< place in the plant's registers
        std::vector<int> values;
        Outcome outcome = Outcome::Waiting;
    };

    void send(std::size_t first, const std::vector<int> &values);
    void settle(host::Cycle::Step step, const FRAME_PRO &request);
    void settleWrite(Write &write, host::Cycle::Step step);
    void lookAtValues();
    void judge(std::size_t reg, int shown, const char *when);
    void hear(const host::ValueChange &change);
    void find(const std::string &what, const Register &reg, const std::string &detail);
    int shownBy(std::size_t reg);

    host::Link &m_link;
    Plant &m_plant;
    std::vector<Write> m_writes;
    std::vector<int> m_written; ///< per register: last value written, -1 for none
    std::vector<int> m_shown; ///< per register: what the last look saw
    std::vector<bool> m_known; ///< per register: the device was read or has confirmed a write
    std::set<std::size_t> m_reported; ///< since the last look
    std::set<std::size_t> m_confirmed; ///< since the last look
    std::vector<std::string> m_findings;
    int m_writeNumber = 0;
};

} // namespace dx4::faults
