// SPDX-License-Identifier: MIT
// The model's register catalogue, address checks and stepped copies.
#include "driver_model.h"
#include "wrap.h"

#include <QStringList>

namespace model {

namespace {

constexpr int highestIndex[11] = { 18, 18, 18, 16, 28, 26, 19, 8, 17, 11, 13 };
constexpr int lastParameter = 2573; // "c.13"

struct TypeRow {
    const char *name;
    const char *description[5];
};

constexpr TypeRow typeRows[6] = {
    { "F", { "h.dd", "0.0", "c.28", "1", "1" } }, { "D", { "dd", "0", "37", "1", "0" } },
    { "CW", { "d", "0", "0", "1", "2" } },        { "FRE", { "d", "0", "0", "1", "2" } },
    { "SW", { "d", "0", "0", "1", "0" } },        { "FU", { "d", "0", "0", "1", "0" } },
};

struct ParsedAddress {
    bool valid;
    int address;
};

ParsedAddress parseGroupAndIndex(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    const QString group = parts.first();
    bool indexIsNumber = false;
    const int index = parts.last().toInt(&indexIsNumber, 10);
    long long groupNumber = group.toInt(nullptr, 16);
    if (group == QLatin1String("c") || group == QLatin1String("C"))
        groupNumber -= 2;
    const int address = wrap(wrap(groupNumber * 256) + 1LL * index);
    return { parts.size() == 2 && indexIsNumber, address };
}

int checkParameterRange(int address, int count)
{
    const int group = address / 256;
    if (group < 0 || group > 10)
        return 0;
    const int first = group * 256;
    const bool below = first > address;
    const bool above = 1LL * address + count > first + highestIndex[group] + 1;
    return below || above ? 2 : 0;
}

// The part that both checks share: conversion, then range.
int checkText(const QString &regType, const QString &text, int *address, int count)
{
    if (!isRegisterType(regType))
        return 3;
    const bool parameter = regType == QLatin1String("F");
    ParsedAddress parsed {};
    if (parameter)
        parsed = parseGroupAndIndex(text);
    else
        parsed.address = text.toInt(&parsed.valid, 10);
    if (address)
        *address = parsed.address;
    if (!parsed.valid)
        return 4;
    if (parameter)
        return checkParameterRange(parsed.address, count);
    const int end = regType == QLatin1String("D") ? 32 : 1;
    const bool outside = parsed.address < 0 || 1LL * parsed.address + count > end;
    return outside ? 2 : 0;
}

QString unsignedText(int number, int base = 10)
{
    return QString::number(static_cast<unsigned>(number), base);
}

QString parameterText(int address)
{
    QString group = unsignedText(address / 256, 16);
    if (group == QLatin1String("a"))
        group = QStringLiteral("c");
    return group + QLatin1Char('.') + unsignedText(address % 256);
}

struct Copies {
    QVector<QString> texts;
    QVector<int> addresses;
    int result = 1;

    void add(int address, const QString &text)
    {
        addresses.append(address);
        texts.append(text);
    }
    void clamp(int address, const QString &text)
    {
        add(address, text);
        result = 2;
    }
};

Copies copyPlain(int start, int count, int step, int highest)
{
    Copies copies;
    for (int k = 0; k < count; ++k) {
        const long long address = start + 1LL * k * step;
        if (address > highest)
            copies.clamp(highest, QString::number(highest));
        else
            copies.add(static_cast<int>(address), unsignedText(static_cast<int>(address)));
    }
    return copies;
}

Copies copyParameters(int start, int count, int step)
{
    Copies copies;
    long long base = start;
    int remaining = count;
    for (int k = 0; k < remaining; ++k) {
        long long address = base + 1LL * k * step;
        for (int group = 0; group <= 10; ++group) {
            if (address / 256 != group || address % 256 <= highestIndex[group])
                continue;
            base = (base / 256 + 1) * 256;
            remaining -= k;
            k = 0;
            address = base;
        }
        if (address > lastParameter)
            copies.clamp(lastParameter, QStringLiteral("c.13"));
        else
            copies.add(static_cast<int>(address), parameterText(static_cast<int>(address)));
    }
    return copies;
}

} // namespace

int DriverModel::getRegListByType(int type, QList<QString> *list) const
{
    if (type != 1)
        return 0;
    for (const char *name : { "F", "D", "CW", "SW", "FRE", "FU" })
        list->append(QString::fromLatin1(name));
    return 1;
}

int DriverModel::getRegDiscription(const QString &regType, QList<QString> *list) const
{
    for (const TypeRow &row : typeRows) {
        if (regType != QLatin1String(row.name))
            continue;
        for (const char *text : row.description)
            list->append(QString::fromLatin1(text));
        return 1;
    }
    return 0;
}

int DriverModel::checkAddrValidity(const QString &regType, const QString &addrText, int *address,
                                   int count, int typeFlag) const
{
    if (isRegisterType(regType) && typeFlag == 0)
        return 1;
    if (addrText.contains(QLatin1Char('-')) || addrText.contains(QLatin1Char('+')))
        return 4;
    return checkText(regType, addrText, address, count);
}

int DriverModel::checkAddr(const QString &regType, const QString &addrText, int *address,
                           int subIndex, int count, int accessMode) const
{
    if (isRegisterType(regType) && subIndex == -1)
        return 1;
    const bool parameter = regType == QLatin1String("F");
    const bool monitorValue = regType == QLatin1String("D");
    const int longest = parameter ? 4 : monitorValue ? 2 : 1;
    if (addrText.size() > longest)
        return 16;
    if (parameter) {
        const QString group = addrText.split(QLatin1Char('.')).first();
        if (group == QLatin1String("a") || group == QLatin1String("A")
            || group == QLatin1String("b") || group == QLatin1String("B"))
            return 3;
    }
    const bool readOnly =
        monitorValue || regType == QLatin1String("FU") || regType == QLatin1String("SW");
    const bool writeOnly = regType == QLatin1String("CW") || regType == QLatin1String("FRE");
    if (readOnly && (accessMode == 1 || accessMode == 2))
        return 6;
    if (writeOnly && (accessMode == 0 || accessMode == 2))
        return 7;
    return checkText(regType, addrText, address, count);
}

int DriverModel::multiCopy(const QString &regType, int startAddress, int count, int step,
                           QVector<QString> *texts, QVector<int> *addresses) const
{
    if (!isRegisterType(regType))
        return 0;
    if (step == -2)
        step = 2;
    else if (step < 1)
        step = 1;
    Copies copies;
    if (regType == QLatin1String("F"))
        copies = copyParameters(startAddress, count, step);
    else
        copies = copyPlain(startAddress, count, step, regType == QLatin1String("D") ? 37 : 0);
    if (texts)
        *texts += copies.texts;
    if (addresses)
        *addresses += copies.addresses;
    return copies.result;
}

} // namespace model
