// SPDX-License-Identifier: MIT
// Two registers in a row that are one number of 32 bits.
#pragma once

#include "cli/console/command_line.h"
#include "cli/registers/target.h"
#include "host/plan/plan.h"

namespace dx4::cli {

/// How they are put together.
struct Pair {
    enum class Kind { None, U32, I32, F32 };

    Kind kind = Kind::None; ///< None: registers stand alone
    bool lowFirst = false; ///< the first register holds the low half

    /// Registers of one number.
    int length() const { return kind == Kind::None ? 1 : 2; }
    quint32 joined(quint16 first, quint16 second) const;

    /// The number that these bits are.
    double quantity(quint32 bits) const;

    /// "4000000000", "-2", "49.98".
    QString text(quint32 bits) const;
};

struct PairOptions {
    QString as; ///< empty: registers stand alone
    QString order;
};

/// Adds --as and --order.
void addPairOptions(Command &command, PairOptions &options);

/// What the options ask for. One request carries whole pairs: an odd block size is lowered by one.
std::optional<Pair> pairOf(const PairOptions &options, host::LinkSettings *link, Failure *failure);

/// Whether every run has an even number of registers.
bool arePairs(const QVector<Target> &targets, const Pair &pair, Failure *failure);

/// Whether every pair is read by one request: the halves of one that is read by two may belong to
/// different values.
bool areReadTogether(const QVector<Target> &targets, const host::Plan &plan, const Pair &pair,
                     Failure *failure);

} // namespace dx4::cli
