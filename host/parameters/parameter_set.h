// SPDX-License-Identifier: MIT
// The parameters of one station as a file that people read and compare.
#pragma once

#include <QMap>
#include <QString>
#include <QVector>

#include <optional>

namespace dx4::host {

/// Values of the F registers of one station.
struct ParameterSet {
    int station = 1; ///< where it was read; it may be restored to another
    QMap<int, quint16> values; ///< by internal address
    QVector<int> refused; ///< addresses that the station does not have, ascending
};

bool operator==(const ParameterSet &a, const ParameterSet &b);

/// Internal addresses of all F registers of the drive, ascending: 203 of them.
QVector<int> allParameters();

/// Whether each F register has a value or was refused.
bool isComplete(const ParameterSet &set);

/// A register whose values are not the same.
struct ParameterDifference {
    int address = 0; ///< internal address
    std::optional<quint16> first; ///< none: the first set does not have it
    std::optional<quint16> second;

    /// "F 8.2 (0xF802): 5 | -", the dash for none.
    QString text() const;
};

/// Differences of two sets, ascending by address.
QVector<ParameterDifference> compare(const ParameterSet &first, const ParameterSet &second);

/// The set as text, one register a line: "F 8.2 = 5", "F 8.3 refused". A complete set has the line
/// "complete" at its end, so that a file which was cut off is noticed.
QString toText(const ParameterSet &set);

/// Reads such a text; "#" begins a comment. A set without "complete" is one whose reading broke
/// off.
///
/// @param error  out: "line 3: ", what is wrong, what would be right; may be null
std::optional<ParameterSet> parseParameterSet(const QString &text, QString *error);

/// Writes a file, replaced as a whole or not at all.
///
/// @param error  out: which file and why not; may be null
bool saveParameterSet(const QString &path, const ParameterSet &set, QString *error);

/// Reads a file.
///
/// @param error  out: "FILE:3: " and what is wrong, as editors and compilers show it; may be null
std::optional<ParameterSet> loadParameterSet(const QString &path, QString *error);

} // namespace dx4::host
