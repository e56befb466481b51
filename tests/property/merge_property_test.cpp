// SPDX-License-Identifier: MIT
// Merging, for any addresses of one station and one type.
#include "link_under_test.h"
#include "property.h"

#include <algorithm>
#include <set>

namespace {

QString drawTypeName()
{
    return *rc::gen::element(QStringLiteral("F"), QStringLiteral("D"), QStringLiteral("CW"),
                             QStringLiteral("FRE"), QStringLiteral("SW"), QStringLiteral("FU"));
}

// Starts and ends both ascend, so that no span lies inside another; then they are shuffled.
QList<KEY_ADDRESS> drawAddressesWithoutContainedOnes(const QString &type)
{
    QList<KEY_ADDRESS> wanted;
    int address = *rc::gen::inRange(0, 600);
    int end = address;
    const int number = *rc::gen::inRange(1, 30);
    for (int i = 0; i < number; ++i) {
        end = std::max(end, address) + *rc::gen::inRange(1, 4);
        wanted.append(wantedAddress(type, address, end - address));
        address += *rc::gen::inRange(1, 6);
    }
    for (int i = number - 1; i > 0; --i)
        wanted.swapItemsAt(i, *rc::gen::inRange(0, i + 1));
    return wanted;
}

std::set<int> registersOf(const QList<KEY_ADDRESS> &list)
{
    std::set<int> registers;
    for (const KEY_ADDRESS &key : list) {
        for (int i = 0; i < key.count; ++i)
            registers.insert(key.address + i);
    }
    return registers;
}

std::vector<std::pair<int, int>> spansOf(const QList<KEY_ADDRESS> &list)
{
    std::vector<std::pair<int, int>> spans;
    for (const KEY_ADDRESS &key : list)
        spans.emplace_back(key.address, key.count);
    return spans;
}

} // namespace

RC_GTEST_PROP(Merging, EveryWantedRegisterIsInABlockAndNoOther, ())
{
    const int blockSize = *rc::gen::inRange(1, 40);
    const LinkUnderTest link(blockSize);
    QList<KEY_ADDRESS> addresses = drawAddressesWithoutContainedOnes(drawTypeName());
    const std::set<int> wanted = registersOf(addresses);

    intf_addrMerge(addresses);

    RC_ASSERT(registersOf(addresses) == wanted);
}

RC_GTEST_PROP(Merging, NoBlockIsLongerThanTheBlockSizeOrTheOneAddressInIt, ())
{
    const int blockSize = *rc::gen::inRange(1, 40);
    const LinkUnderTest link(blockSize);
    QList<KEY_ADDRESS> addresses = drawAddressesWithoutContainedOnes(drawTypeName());
    const auto given = spansOf(addresses);

    intf_addrMerge(addresses);

    for (const auto &block : spansOf(addresses)) {
        const bool wasAsked = std::find(given.begin(), given.end(), block) != given.end();
        RC_ASSERT(block.second <= blockSize || wasAsked);
    }
}

RC_GTEST_PROP(Merging, ParameterBlocksStayInsideTheirGroup, ())
{
    const LinkUnderTest link(120);
    QList<KEY_ADDRESS> addresses = drawAddressesWithoutContainedOnes(QStringLiteral("F"));
    const auto given = spansOf(addresses);

    intf_addrMerge(addresses);

    for (const auto &[address, count] : spansOf(addresses)) {
        // One that was asked for across a group end is joined with what starts in its own group.
        const bool crosses = std::any_of(given.begin(), given.end(), [&](const auto &span) {
            return span.first / 256 != (span.first + span.second - 1) / 256;
        });
        RC_ASSERT(crosses || address / 256 == (address + count - 1) / 256);
    }
}

RC_GTEST_PROP(Merging, EqualAddressesKeepTheOrderOfTheHost, ())
{
    const LinkUnderTest link(0); // nothing is joined
    QList<KEY_ADDRESS> addresses;
    const int number = *rc::gen::inRange(1, 60);
    for (int i = 0; i < number; ++i) {
        addresses.append(wantedAddress(QStringLiteral("D"), *rc::gen::inRange(0, 6), 1));
        addresses.last().hostWord1 = i;
    }

    const int reads = intf_addrMerge(addresses);

    RC_ASSERT(reads == number);
    for (int i = 1; i < number; ++i) {
        const KEY_ADDRESS &before = addresses.at(i - 1);
        const KEY_ADDRESS &after = addresses.at(i);
        RC_ASSERT(before.address <= after.address);
        RC_ASSERT(before.address < after.address || before.hostWord1 < after.hostWord1);
    }
}

RC_GTEST_PROP(Merging, MergedBlocksAreNotMergedFurther, ())
{
    const int blockSize = *rc::gen::inRange(1, 40);
    const LinkUnderTest link(blockSize);
    QList<KEY_ADDRESS> addresses = drawAddressesWithoutContainedOnes(drawTypeName());
    intf_addrMerge(addresses);
    const auto once = spansOf(addresses);

    intf_addrMerge(addresses);

    RC_ASSERT(spansOf(addresses) == once);
}

RC_GTEST_PROP(Merging, EachBlockIsOneCyclicRead, ())
{
    const LinkUnderTest link(*rc::gen::inRange(1, 40));
    QList<KEY_ADDRESS> addresses = drawAddressesWithoutContainedOnes(drawTypeName());

    const int reads = intf_addrMerge(addresses);

    RC_ASSERT(reads == addresses.size() && reads == driver.readList.size());
    for (int i = 0; i < reads; ++i) {
        RC_ASSERT(driver.readList.at(i).address == addresses.at(i).address);
        RC_ASSERT(driver.readList.at(i).count == addresses.at(i).count);
        RC_ASSERT(driver.readList.at(i).varKind == 4);
    }
}

RC_GTEST_PROP(Merging, ExactlyTheWantedRegistersAreMonitored, ())
{
    const LinkUnderTest link(16);
    QList<KEY_ADDRESS> former = drawAddressesWithoutContainedOnes(QStringLiteral("D"));
    QList<KEY_ADDRESS> addresses = drawAddressesWithoutContainedOnes(QStringLiteral("D"));
    const std::set<int> wanted = registersOf(addresses);
    intf_addrMerge(former);

    intf_addrMerge(addresses);

    std::set<int> monitored;
    for (const _DATA_ &area : std::as_const(driver.dataAreas)) {
        if (area.flags == 1)
            monitored.insert(area.address);
    }
    RC_ASSERT(monitored == wanted);
}
