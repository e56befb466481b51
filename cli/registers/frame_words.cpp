// SPDX-License-Identifier: MIT
// A frame in one line of words.
#include "cli/registers/frame_words.h"

#include "cli/console/output.h"
#include "cli/registers/frame_text.h"

#include <QStringList>

namespace dx4::cli {
namespace {

constexpr int shortestFrame = 5;

QString valuesText(const FrameText &text, int firstRegister)
{
    QStringList values;
    for (const quint16 value : text.values)
        values.append(QString::number(value));
    const QString numbers = values.join(QStringLiteral(", "));
    return firstRegister < 0 ? numbers : filled("%1 = %2", registerText(firstRegister), numbers);
}

/// Requests and echoes of one register have the same bytes; the direction tells them apart.
QString kindText(const FrameText &text, bool isRequest)
{
    if (!text.kind.startsWith(QLatin1String("write request")))
        return text.kind;
    return isRequest ? QStringLiteral("write request") : QStringLiteral("echo of a write");
}

QStringList meaningOf(const FrameText &text, bool isRequest, int firstRegister)
{
    QStringList words { filled("station %1", text.station), kindText(text, isRequest) };
    const int first = text.firstRegister < 0 ? firstRegister : text.firstRegister;
    if (!text.values.isEmpty())
        words.append(valuesText(text, first));
    else if (text.firstRegister >= 0)
        words.append(registerText(text.firstRegister) + QStringLiteral(", ")
                     + counted(text.count, "register", "registers"));
    for (const FrameField &field : text.fields) {
        if (field.name == QLatin1String("code"))
            words.append(field.meaning);
    }
    if (!text.crcIsRight)
        words.append(QStringLiteral("wrong CRC"));
    return words;
}

} // namespace

QString frameWords(const QByteArray &frame, bool isRequest, int firstRegister)
{
    if (frame.size() < shortestFrame)
        return QStringLiteral("no frame");
    const FrameText text = explainFrame(frame, firstRegister);
    return meaningOf(text, isRequest, firstRegister).join(QStringLiteral(", "));
}

} // namespace dx4::cli
