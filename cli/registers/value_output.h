// SPDX-License-Identifier: MIT
// Register values that were read or written, as text and as JSON.
#pragma once

#include "cli/registers/register_names.h"
#include "cli/registers/target.h"

#include <QJsonObject>

namespace dx4::cli {

/// Station, type, address and register of one register.
QJsonObject registerJson(int station, const QString &regType, int address);

/// Adds the number, and name, scaled value, unit and meaning where more is known.
void describe(QJsonObject &object, const WatchedValue &what, quint32 value);

/// What was read, without scaling: the register, or the number of a pair.
QString numberText(const WatchedValue &what, quint32 value);

/// Prints one line, or one object, per register of the run, or per pair.
///
/// @param outcome  of a write, put behind each, such as "confirmed"; empty for none
/// @param write    its id, for JSON
void printValues(const Target &target, const QVector<quint16> &values, bool json,
                 const RegisterNames &names, const Pair &pair = {},
                 const QString &outcome = QString(), int write = 0);

} // namespace dx4::cli
