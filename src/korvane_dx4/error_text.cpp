// SPDX-License-Identifier: MIT
// The line that tells the host which request a reply answered and how much came.
#include "korvane_dx4/error_text.h"

#include "korvane_dx4.h"
#include "registers/register_type.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace dx4 {
namespace {

// Four numbers of at most 11 characters, a name of at most 3 and five marks.
constexpr std::size_t longestLine = 4 * 11 + 3 + 5;

// Builds the line in plain characters; filling a template costs more than the rest of a reply.
class Line {
public:
    void add(char mark) { *m_end++ = mark; }

    void add(int number)
    {
        m_end = std::to_chars(m_end, m_text.data() + m_text.size(), number).ptr;
    }

    void add(const QString &name)
    {
        for (const QChar letter : name)
            *m_end++ = letter.toLatin1();
    }

    void copyTo(QString &text) const
    {
        const int size = static_cast<int>(m_end - m_text.data());
        text.resize(size);
        QChar *target = text.data();
        for (int i = 0; i < size; ++i)
            target[i] = QLatin1Char(m_text[static_cast<std::size_t>(i)]);
    }

private:
    std::array<char, longestLine> m_text;
    char *m_end = m_text.data();
};

// A name with "%" in it takes part in the substitution, so only the template gives the right line.
QString substituted(const VARIABLE &var, int received)
{
    return QString(QLatin1String("%1#%2%3(%4)(%5)"))
        .arg(var.station)
        .arg(var.regType)
        .arg(QString::number(var.address))
        .arg(var.count)
        .arg(received);
}

} // namespace

void writeErrorText(QString &text, const VARIABLE &var, int received)
{
    if (registerType(var.regType) == UnknownType) {
        text = substituted(var, received);
        return;
    }
    Line line;
    line.add(var.station);
    line.add('#');
    line.add(var.regType);
    line.add(var.address);
    line.add('(');
    line.add(var.count);
    line.add(')');
    line.add('(');
    line.add(received);
    line.add(')');
    line.copyTo(text);
}

} // namespace dx4

QString getErrorInfo(QByteArray reply)
{
    QString text;
    if (!driver.sendFrames.isEmpty())
        dx4::writeErrorText(text, driver.sendFrames.constFirst().var,
                            static_cast<int>(reply.size()));
    return text;
}
