// SPDX-License-Identifier: MIT
// Results of commands: facts that are each spelled once, written as JSON, as text or as cells.
#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

namespace dx4::cli {

struct Fact {
    const char *key = ""; ///< in JSON, and in the layout of a text
    QJsonValue value; ///< undefined: JSON is without it
    QString text = {}; ///< where it is other than the value
};

/// In the order of a table's columns.
using Facts = QVector<Fact>;

/// The value, or undefined.
QJsonValue valueIf(bool isThere, const QJsonValue &value);

QJsonObject jsonOf(const Facts &facts);
QStringList cellsOf(const Facts &facts);

void printJson(const Facts &facts);

/// Prints one JSON object, or a line of text.
///
/// @param layout  of the text, with keys in braces: "{frames} in {file}"
void print(bool json, const Facts &facts, const char *layout);

} // namespace dx4::cli
