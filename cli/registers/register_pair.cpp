// SPDX-License-Identifier: MIT
// Two registers in a row that are one number of 32 bits.
#include "cli/registers/register_pair.h"

#include "host/link/notation.h"

#include <algorithm>
#include <cstring>

namespace dx4::cli {
namespace {

constexpr int floatDigits = 7; // what 24 bits can tell apart

bool holds(const KEY_ADDRESS &block, const Target &target, int address)
{
    return block.station == target.station && block.regType == target.regType
        && block.address <= address && address + 2 <= block.address + block.count;
}

} // namespace

quint32 Pair::joined(quint16 first, quint16 second) const
{
    const quint32 high = lowFirst ? second : first;
    const quint32 low = lowFirst ? first : second;
    return (high << 16) | low;
}

double Pair::quantity(quint32 bits) const
{
    if (kind == Kind::I32)
        return static_cast<qint32>(bits);
    if (kind != Kind::F32)
        return bits;
    float number = 0.0F;
    static_assert(sizeof number == sizeof bits, "the bits of a float are those of two registers");
    std::memcpy(&number, &bits, sizeof number);
    return static_cast<double>(number);
}

QString Pair::text(quint32 bits) const
{
    return kind == Kind::F32 ? QString::number(quantity(bits), 'g', floatDigits)
                             : QString::number(static_cast<qint64>(quantity(bits)));
}

void addPairOptions(Command &command, PairOptions &options)
{
    command.choice("--as", options.as, "two registers in a row are one number", "u32|i32|f32");
    command.choice("--order", options.order, "half that the first register holds; else high",
                   "high|low");
}

std::optional<Pair> pairOf(const PairOptions &options, host::LinkSettings *link, Failure *failure)
{
    Pair pair;
    pair.lowFirst = options.order == QLatin1String("low");
    if (options.as.isEmpty() && !options.order.isEmpty())
        return refuse(failure, QStringLiteral("--order goes with --as u32, i32 or f32"));
    if (options.as.isEmpty())
        return pair;
    if (link->blockSize < 2)
        return refuse(
            failure,
            QStringLiteral("--as needs requests of 2 registers; the block size is 1, see --block"));
    link->blockSize -= link->blockSize % 2;
    pair.kind = options.as == QLatin1String("u32") ? Pair::Kind::U32
        : options.as == QLatin1String("i32")       ? Pair::Kind::I32
                                                   : Pair::Kind::F32;
    return pair;
}

bool arePairs(const QVector<Target> &targets, const Pair &pair, Failure *failure)
{
    const auto odd = std::find_if(targets.cbegin(), targets.cend(), [&](const Target &target) {
        return target.count % pair.length() != 0;
    });
    if (odd == targets.cend())
        return true;
    return fail(failure,
                filled("--as takes two registers per number, and %1 begins a run of %2; write an "
                       "even number, such as D 0-1",
                       host::fullAddress(odd->regType, odd->address), odd->count));
}

bool areReadTogether(const QVector<Target> &targets, const host::Plan &plan, const Pair &pair,
                     Failure *failure)
{
    if (pair.kind == Pair::Kind::None)
        return true;
    for (const Target &target : targets) {
        for (int i = 0; i < target.count; i += 2) {
            const int address = target.address + i;
            const bool isTogether =
                std::any_of(plan.blocks.cbegin(), plan.blocks.cend(),
                            [&](const auto &block) { return holds(block, target, address); });
            if (isTogether)
                continue;
            return fail(failure,
                        filled("%1 and the register behind it would be read by two requests; name "
                               "fewer registers between them, or another --block",
                               host::fullAddress(target.regType, address)));
        }
    }
    return true;
}

} // namespace dx4::cli
