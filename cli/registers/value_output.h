// SPDX-License-Identifier: MIT
// Register values that were read or written, as text and as JSON.
#pragma once

#include "cli/console/facts.h"
#include "cli/registers/register_names.h"
#include "cli/registers/target.h"

namespace dx4::cli {

/// Type, address and register of one register.
Facts registerFacts(const QString &regType, int address);

/// The same behind its station.
Facts registerFacts(int station, const QString &regType, int address);

/// The number, and name, scaled value, unit and meaning, which JSON has where more is known.
///
/// @param value  nothing where it is not known
Facts valueFacts(const WatchedValue &what, std::optional<quint32> value);

/// Prints one line, or one object, per register of the run, or per pair.
///
/// @param outcome  of a write, put behind each, such as "confirmed"; empty for none
/// @param write    its id, for JSON
void printValues(const Target &target, const QVector<quint16> &values, bool json,
                 const RegisterNames &names, const Pair &pair = {},
                 const QString &outcome = QString(), int write = 0);

} // namespace dx4::cli
