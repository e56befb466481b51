// SPDX-License-Identifier: MIT
// Confirmed writes, as text and as JSON.
#include "cli/line/write_output.h"

#include "cli/console/output.h"
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
        if (!json) {
            printValues(piece, written, false, names, outcome);
            continue;
        }
        for (int i = 0; i < piece.count; ++i) {
            const WatchedValue what = names.of(piece.station, piece.regType, piece.address + i);
            QJsonObject object = registerJson(piece.station, piece.regType, piece.address + i);
            object.insert(QStringLiteral("value"), written.at(i));
            describe(object, what, written.at(i));
            object.insert(QStringLiteral("outcome"), outcome);
            object.insert(QStringLiteral("write"), result.outcome.id);
            printJson(object);
        }
    }
}

} // namespace dx4::cli
