// SPDX-License-Identifier: MIT
// Confirmed writes, as text and as JSON.
#include "cli/line/write_output.h"

#include "cli/registers/value_output.h"

namespace dx4::cli {

void printResults(const QVector<WriteResult> &results, const Target &target,
                  const QVector<quint16> &values, bool json, const RegisterNames &names)
{
    for (const WriteResult &result : results) {
        const Target &piece = result.target;
        const QVector<quint16> written = values.mid(piece.address - target.address, piece.count);
        const QString outcome =
            result.outcome.sent ? QStringLiteral("confirmed") : QStringLiteral("held already");
        printValues(piece, written, json, names, {}, outcome, result.outcome.id);
    }
}

} // namespace dx4::cli
