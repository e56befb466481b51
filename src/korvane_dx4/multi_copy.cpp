// SPDX-License-Identifier: MIT
// Addresses of stepped copies, for the host's editor.
#include "driver_api.h"
#include "registers/address_text.h"
#include "registers/register_type.h"

using namespace dx4;

namespace {

// Where the copies go, and whether one of them had to be clamped.
struct Copies {
    QVector<QString> *texts;
    QVector<int> *addresses;
    bool clamped = false;

    void append(int address, const QString &text)
    {
        if (texts)
            texts->append(text);
        if (addresses)
            addresses->append(address);
    }

    void appendClamp(int address, const QString &text)
    {
        append(address, text);
        clamped = true;
    }
};

// Deliberate: -2 counts as 2, while every other step below 1 counts as 1.
int normalisedStep(int step)
{
    if (step == -2)
        return 2;
    return step < 1 ? 1 : step;
}

QString parameterText(int address)
{
    const unsigned group = static_cast<unsigned>(address / 256);
    const unsigned index = static_cast<unsigned>(address % 256);
    const QString groupText =
        group == groupC ? QString(QLatin1Char('c')) : QString::number(group, 16);
    return groupText + QLatin1Char('.') + QString::number(index);
}

bool isBehindGroupEnd(qint64 address, int group)
{
    return group == address / 256 && address % 256 > REG_F_ADDRESS[group][1];
}

// Steps through the parameter groups. A copy that would lie behind the end of its group moves the
// base to index 0 of the next group, and stepping starts again from there.
//
// Deliberate: the next group is that of the base, not of the copy, so that copies stepped group by
// group restart at group 1 when they meet a shorter group.
//
// In 64 bits, because a copy far behind the range has to stay behind it.
void copyParameters(Copies &copies, int startAddress, int count, int step)
{
    const int highestIndex = REG_F_ADDRESS[groupC][1];
    const int highest = packedAddress(groupC, highestIndex);
    const QString highestText = parameterText(highest);
    qint64 base = startAddress;
    int remaining = count;
    for (int k = 0; k < remaining; ++k) {
        qint64 address = base + qint64 { k } * step;
        for (int group = 0; group < parameterGroupCount; ++group) {
            if (!isBehindGroupEnd(address, group))
                continue;
            base = (base / 256 + 1) * 256;
            remaining -= k;
            k = 0;
            address = base;
        }
        if (address > highest)
            copies.appendClamp(highest, highestText);
        else
            copies.append(static_cast<int>(address), parameterText(static_cast<int>(address)));
    }
}

void copyNumbers(Copies &copies, RegisterType type, int startAddress, int count, int step)
{
    const QString &highestText = REG_DESCRIPTION[type][HighestColumn];
    const int highest = highestText.toInt();
    for (int k = 0; k < count; ++k) {
        const qint64 address = startAddress + qint64 { k } * step;
        if (address > highest)
            copies.appendClamp(highest, highestText);
        else
            copies.append(static_cast<int>(address),
                          QString::number(static_cast<unsigned>(address)));
    }
}

} // namespace

int intf_multiCopy(QString regType, int startAddress, int count, int step, QVector<QString> *texts,
                   QVector<int> *addresses)
{
    const RegisterType type = registerType(regType);
    if (type == UnknownType)
        return CopyTypeUnknown;
    Copies copies { texts, addresses };
    if (type == TypeF)
        copyParameters(copies, startAddress, count, normalisedStep(step));
    else
        copyNumbers(copies, type, startAddress, count, normalisedStep(step));
    return copies.clamped ? CopyClamped : CopyInRange;
}
