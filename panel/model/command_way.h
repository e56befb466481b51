// SPDX-License-Identifier: MIT
// The way of one command: asked for, echoed, and seen in what the drive reports.
#pragma once

#include "host/writes/write_desk.h"

#include <QCoreApplication>

#include <optional>

namespace dx4::panel {

/// What a drive reports once it has done what it was asked for.
struct Expectation {
    QString regType; ///< register that tells
    int address = 0;
    quint16 mask = 0xFFFF;
    quint16 value = 0; ///< of the masked bits

    bool isMetBy(quint16 word) const { return (word & mask) == value; }
};

/// Follows one command to what the user has to know of it. An echo says that the drive has heard;
/// only what was read afterwards says that it obeys.
class CommandWay {
    Q_DECLARE_TR_FUNCTIONS(dx4::panel::CommandWay)

public:
    enum class Stage {
        None, ///< nothing was asked for
        Queued, ///< waits for its turn or for its echo
        Echoed, ///< the drive has it
        Seen, ///< the drive reports it
        Unseen, ///< echoed, but the drive does not report it
        Unconfirmed, ///< sent and not echoed: the drive may have it
        Refused, ///< the drive does not have it
    };

    /// How long an echoed command may take to show.
    static constexpr host::Duration seenWithin = std::chrono::seconds(5);

    /// @param id        of the write; 0: it was not taken
    /// @param what      the command in words, "Start"
    /// @param expected  none: the echo is all there is to see
    void begin(int id, const QString &what, const std::optional<Expectation> &expected = {});

    /// Takes the end of a write; those of other ids are left alone.
    void noteEnded(const host::WriteOutcome &outcome, host::Duration now);

    /// Takes a value of the register that tells. One that was read before the echo says nothing.
    ///
    /// @param readAt  moment of the steady clock
    void noteValue(quint16 value, host::Duration readAt);

    /// Lets time pass.
    void look(host::Duration now);

    Stage stage() const { return m_stage; }
    const std::optional<Expectation> &expected() const { return m_expected; }
    bool isOpen() const { return m_stage == Stage::Queued || m_stage == Stage::Echoed; }

    /// Whether the drive does not do what was asked for, as far as is known.
    bool isBad() const { return m_stage >= Stage::Unseen; }

    /// "Start: echoed"; empty where nothing was asked for.
    QString text() const;

private:
    QString stageText() const;

    int m_id = 0;
    QString m_what;
    QString m_reason; // of a refusal
    std::optional<Expectation> m_expected;
    Stage m_stage = Stage::None;
    host::Duration m_echoedAt { 0 };
};

} // namespace dx4::panel
