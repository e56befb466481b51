// SPDX-License-Identifier: MIT
// Plausible and odd arguments for the driver's entry points.
#include "arguments.h"

#include <cstring>
#include <limits>

namespace model {

namespace {

constexpr int highest = std::numeric_limits<int>::max();
constexpr int lowest = std::numeric_limits<int>::min();
constexpr int groupEnds[] = { 18, 18, 18, 16, 28, 26, 19, 8, 17, 11, 13, 5, 0 };

} // namespace

int drawStation(ByteSource &source)
{
    static constexpr int stations[] = { 1, 1, 1, 1, 1, 2, 2, 2, 3, 3, 0, 247, 257, -1 };
    return source.onceIn(100) ? source.pick({ highest, lowest, 858993459, -858993460 })
                              : source.pick(stations);
}

QString drawType(ByteSource &source)
{
    static const char *const common[] = { "F", "F", "F",  "F",   "D",  "D",
                                          "D", "D", "CW", "FRE", "SW", "FU" };
    static const char *const odd[] = {
        "f", "XY", "", "%1", "%2", "%L3", "D ", "RWI", "-1", "F_bit"
    };
    return QString::fromLatin1(source.onceIn(24) ? source.pick(odd) : source.pick(common));
}

int drawAddress(ByteSource &source)
{
    const int kind = source.below(20);
    if (kind < 12)
        return source.below(12);
    if (kind < 15) {
        const int group = source.below(13);
        return group * 256 + (source.onceIn(2) ? source.below(3) : groupEnds[group] - 2)
            + source.below(5);
    }
    switch (kind) {
    case 15:
        return source.between(28, 40);
    case 16:
        return -source.below(8);
    case 17:
        return source.onceIn(2) ? -source.between(250, 260) : -source.between(1530, 1545);
    case 18:
        return highest - source.below(8);
    default:
        return source.onceIn(4) ? lowest + source.below(4) : source.between(250, 260);
    }
}

int drawCount(ByteSource &source)
{
    const int kind = source.byte();
    if (kind < 170)
        return 1 + kind % 4;
    if (kind < 225)
        return source.between(3, 24);
    if (kind < 232)
        return 0;
    if (kind < 243)
        return -source.between(1, 12);
    if (kind < 250 && !source.mayCostMuch())
        return source.between(24, 32);
    if (kind < 247)
        return source.between(100, 140);
    if (kind < 249)
        return source.between(500, 530);
    if (kind < 250)
        return source.between(530, 600);
    return kind < 253 ? -source.between(1, 600) : source.between(1, 40);
}

int drawBlockSize(ByteSource &source)
{
    static constexpr int sizes[] = { 16, 16, 10, 10, 4, 2, 120, 1, 1, 0, 507, 1000, -1, -4, -100 };
    static constexpr int extremes[] = { highest, lowest, highest / 8 + 1, lowest / 8 };
    return source.onceIn(50) ? source.pick(extremes) : source.pick(sizes);
}

QString drawAddressText(ByteSource &source)
{
    static const char *const texts[] = {
        "0.5",  "c.13",  "C.13",       "c.14",       "0.18", "0.19", "a.01",       "B.01",
        "d.05", "0.100", "1.2.",       "1.2.3",      "5",    "",     ".",          ".5",
        "x.05", "0x1.2", " 1.2",       "1. 2",       "-1",   "+1",   "0",          "1",
        "31",   "32",    "00",         "9.11",       "9.12", "0.-5", "7fffffff.1", "1.2147483647",
        "A.1",  "b.1",   "2147483647", "2147483648", "1.",   "c.",   "\t5",        "0x5"
    };
    if (source.onceIn(2))
        return QString::fromLatin1(source.pick(texts));
    static constexpr char letters[] = { '0', '1', '2', '3', '8', '9', 'a', 'b', 'c', 'C',
                                        'd', 'f', '.', '.', '.', '-', '+', ' ', 'x', '%' };
    QString text;
    for (int left = source.below(7); left > 0; --left)
        text += QLatin1Char(source.pick(letters));
    return text;
}

QByteArray drawPropertyText(ByteSource &source)
{
    static const char *const odd[] = { "",
                                       "1#0#0#3",
                                       "1##0#3#16",
                                       "#####",
                                       "a#b#c#d#e",
                                       " 1 #0#+7#2# 8",
                                       "1#0#0#3#0x10",
                                       "2#0#0#2#4#9",
                                       "1#0#0#1#99999999999",
                                       "1;0;0;3;16",
                                       "\xE9#0#\xFF#2#5" };
    if (source.onceIn(8))
        return QByteArray(source.pick(odd));
    const int linkId = source.onceIn(4) ? source.below(4) : 1;
    const int writesLocalOnly = source.onceIn(8) ? 1 : 0;
    const int retryLimit = source.below(4);
    return QByteArray::number(linkId) + '#' + QByteArray::number(writesLocalOnly) + "#5#"
        + QByteArray::number(retryLimit) + '#' + QByteArray::number(drawBlockSize(source));
}

QByteArray drawValues(ByteSource &source, int registers)
{
    QByteArray values;
    const int kind = source.below(3);
    const int start = source.byte();
    for (int i = 0; i < 2 * registers; ++i) {
        // All alike, counting, or one byte each; long runs do not use the source up.
        int value = kind == 0 ? start & 3 : start + i;
        if (kind == 2 && i < 16)
            value = source.byte();
        values.append(static_cast<char>(value & 0xFF));
    }
    return values;
}

VARIABLE drawVariable(ByteSource &source)
{
    VARIABLE var;
    var.varKind = source.byte();
    var.station = drawStation(source);
    var.regType = drawType(source);
    var.address = drawAddress(source);
    var.count = drawCount(source);
    const QByteArray values = drawValues(source, source.onceIn(4) ? 512 : 8);
    std::memcpy(var.data, values.constData(), static_cast<std::size_t>(values.size()));
    return var;
}

_DATA_ drawArea(ByteSource &source)
{
    _DATA_ area;
    area.flag0 = static_cast<unsigned char>(source.below(2));
    area.writePending = static_cast<unsigned char>(source.below(3));
    area.word1 = source.onceIn(3) ? source.byte() - 128 : 0;
    area.flags = source.below(8) | (source.onceIn(8) ? ~7 : 0);
    area.bitMask = source.onceIn(2) ? 0 : source.byte() * 257 - source.below(2) * 65536;
    area.station = drawStation(source);
    area.regType = drawType(source);
    area.address = drawAddress(source);
    for (int i = 0; i < 4; ++i) {
        area.value[i] = static_cast<unsigned char>(source.below(4));
        area.writeValue[i] = static_cast<unsigned char>(source.below(4));
    }
    return area;
}

KEY_ADDRESS drawKeyAddress(ByteSource &source)
{
    KEY_ADDRESS key;
    key.hostTag = QString::number(source.byte());
    key.hostWord1 = source.byte();
    key.hostWord2 = -key.hostWord1;
    key.hostText = key.hostTag + QLatin1Char('t');
    key.station = drawStation(source);
    key.regType = drawType(source);
    key.address = drawAddress(source);
    key.subAddress = source.onceIn(3) ? -1 : source.below(3);
    key.count = drawCount(source);
    key.data[0] = static_cast<unsigned char>(source.byte());
    key.data[1023] = key.data[0];
    return key;
}

QVector<_RCP_VAR_PRO> drawRecipe(ByteSource &source)
{
    QVector<_RCP_VAR_PRO> recipe;
    for (int left = source.below(6); left > 0; --left) {
        _RCP_VAR_PRO var;
        var.linkId = source.onceIn(4) ? source.below(4) : 1;
        var.station = drawStation(source);
        var.regType = drawType(source);
        var.address = drawAddress(source);
        var.count = drawCount(source);
        var.bufferOffset = source.below(1000);
        var.spare = source.byte();
        recipe.append(var);
    }
    return recipe;
}

} // namespace model
