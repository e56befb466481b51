// SPDX-License-Identifier: MIT
// Stepped copies, for any count and step.
#include "link_under_test.h"
#include "property.h"

namespace {

// Highest index of each parameter group as the drive's manual has them.
constexpr int highestIndex[] = { 18, 18, 18, 16, 28, 26, 19, 8, 17, 11, 13 };

bool isParameter(int address)
{
    const int group = address / 256;
    return address >= 0 && group <= 10 && address % 256 <= highestIndex[group];
}

struct Copies {
    QVector<QString> texts;
    QVector<int> addresses;
    int result;
};

Copies copy(const QString &type, int start, int count, int step)
{
    Copies copies;
    copies.result = intf_multiCopy(type, start, count, step, &copies.texts, &copies.addresses);
    return copies;
}

int drawParameter()
{
    const int group = *rc::gen::inRange(0, 11);
    return group * 256 + *rc::gen::inRange(0, highestIndex[group] + 1);
}

} // namespace

RC_GTEST_PROP(MultiCopy, ParametersAreAsManyAsAskedForAndAllExist, ())
{
    const int count = *rc::gen::inRange(0, 200);
    const int step = *rc::gen::inRange(-5, 300);

    const Copies copies = copy(QStringLiteral("F"), drawParameter(), count, step);

    RC_ASSERT(copies.addresses.size() == count && copies.texts.size() == count);
    for (int address : copies.addresses)
        RC_ASSERT(isParameter(address));
}

RC_GTEST_PROP(MultiCopy, TheTextOfEachCopyReadsBackAsItsAddress, ())
{
    const Copies copies = copy(QStringLiteral("F"), drawParameter(), *rc::gen::inRange(1, 60),
                               *rc::gen::inRange(1, 300));

    for (int i = 0; i < copies.addresses.size(); ++i) {
        int address = -1;
        const int check =
            intf_checkAddr(QStringLiteral("F"), copies.texts.at(i), &address, 0, 1, 2);
        RC_ASSERT(check == 0);
        RC_ASSERT(address == copies.addresses.at(i));
    }
}

RC_GTEST_PROP(MultiCopy, MonitorValuesStayInTheirRangeAndAreClampedForGood, ())
{
    const int start = *rc::gen::inRange(0, 60);
    const int count = *rc::gen::inRange(0, 100);
    const int step = *rc::gen::inRange(1, 100);

    const Copies copies = copy(QStringLiteral("D"), start, count, step);

    RC_ASSERT(copies.addresses.size() == count && copies.texts.size() == count);
    for (int i = 0; i < count; ++i)
        RC_ASSERT(copies.addresses.at(i) == std::min(start + i * step, 37));
    const bool leavesRange = count > 0 && start + (count - 1) * step > 37;
    RC_ASSERT(copies.result == (leavesRange ? 2 : 1));
}

RC_GTEST_PROP(MultiCopy, TypesOfOneRegisterHaveOnlyAddressZero, ())
{
    const QString type = *rc::gen::element(QStringLiteral("CW"), QStringLiteral("FRE"),
                                           QStringLiteral("SW"), QStringLiteral("FU"));
    const int count = *rc::gen::inRange(0, 50);

    const Copies copies = copy(type, 0, count, *rc::gen::inRange(-3, 9));

    RC_ASSERT(copies.addresses == QVector<int>(count, 0));
    RC_ASSERT(copies.texts == QVector<QString>(count, QStringLiteral("0")));
    RC_ASSERT(copies.result == (count > 1 ? 2 : 1));
}
