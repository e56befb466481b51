// SPDX-License-Identifier: MIT
// Several settings of one line, to be tried in turn.
#include "cli/line/line_variants.h"

#include "cli/line/line_options.h"
#include "host/base/number_text.h"

namespace dx4::cli {
namespace {

std::optional<QVector<int>> speedsOf(int own, const LineVariants &wanted, Failure *failure)
{
    // The usual ones first.
    const QVector<int> all { 9600, 19200, 38400, 57600, 115200, 4800, 2400, 1200 };
    if (wanted.all)
        return all;
    if (wanted.speeds.isEmpty())
        return QVector<int> { own };
    QVector<int> speeds;
    const QStringList words = wanted.speeds.split(QLatin1Char(','));
    for (const QString &word : words) {
        const auto speed = host::parseWholeNumber(word.trimmed());
        if (!speed || *speed < slowestSpeed || *speed > fastestSpeed)
            return refuse(failure,
                          filled("--speeds: \"%1\" is no speed; write 300 to 4000000 bit/s between "
                                 "commas, such as 9600,19200",
                                 word));
        speeds.append(*speed);
    }
    return speeds;
}

std::optional<QVector<host::Parity>> paritiesOf(host::Parity own, const LineVariants &wanted,
                                                Failure *failure)
{
    if (wanted.parities.isEmpty() && !wanted.all)
        return QVector<host::Parity> { own };
    QVector<host::Parity> parities;
    const QString letters = wanted.all ? QStringLiteral("N,E,O") : wanted.parities.toUpper();
    for (const QString &letter : letters.split(QLatin1Char(','))) {
        const auto parity = parityOf(letter.trimmed());
        if (!parity)
            return refuse(
                failure,
                filled("--parities: \"%1\" is no parity; write N, E and O between commas", letter));
        parities.append(*parity);
    }
    return parities;
}

} // namespace

std::optional<QVector<host::LineSettings>> variantsOf(const host::LineSettings &line,
                                                      const LineVariants &wanted, Failure *failure)
{
    const auto speeds = speedsOf(line.speed, wanted, failure);
    const auto parities = speeds ? paritiesOf(line.parity, wanted, failure) : std::nullopt;
    if (!parities)
        return std::nullopt;
    QVector<host::LineSettings> variants;
    for (const int speed : *speeds) {
        for (const host::Parity parity : *parities) {
            host::LineSettings variant = line;
            variant.speed = speed;
            variant.parity = parity;
            const bool isOwn = wanted.parities.isEmpty() && !wanted.all;
            if (parity != host::Parity::None && !isOwn)
                variant.stopBits = 1;
            variants.append(variant);
        }
    }
    return variants;
}

} // namespace dx4::cli
