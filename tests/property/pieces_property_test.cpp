// SPDX-License-Identifier: MIT
// Requests longer than a frame are cut into pieces that give the whole when put together.
#include "link_under_test.h"
#include "property.h"

namespace {

struct Run {
    int address;
    int count;
};

Run drawRun(int limit)
{
    const int pieces = *rc::gen::inRange(1, 40);
    return { *rc::gen::inRange(0, 3000),
             *rc::gen::inRange((pieces - 1) * limit, pieces * limit) + 1 };
}

void checkPieces(const QList<VARIABLE> &list, const Run &run, int limit)
{
    int next = run.address;
    for (const VARIABLE &piece : list) {
        RC_ASSERT(piece.address == next);
        RC_ASSERT(piece.count >= 1 && piece.count <= limit);
        next += piece.count;
    }
    RC_ASSERT(next == run.address + run.count);
    for (int i = 0; i + 1 < list.size(); ++i)
        RC_ASSERT(list.at(i).count == limit);
}

} // namespace

RC_GTEST_PROP(Pieces, WritesPutTogetherGiveTheWholeRun, ())
{
    const int limit = *rc::gen::inRange(1, 124);
    const Run run = drawRun(limit);
    LinkUnderTest link(limit);
    std::vector<int> values;
    for (int i = 0; i < run.count; ++i)
        values.push_back((run.address * 7 + i * 31) & 0xFFFF);

    link.write(QStringLiteral("F"), run.address, values);

    checkPieces(driver.writeList, run, limit);
    for (const VARIABLE &piece : std::as_const(driver.writeList)) {
        for (int i = 0; i < piece.count; ++i) {
            const int value = piece.data[2 * i] + 256 * piece.data[2 * i + 1];
            RC_ASSERT(value
                      == ((run.address * 7 + (piece.address - run.address + i) * 31) & 0xFFFF));
        }
    }
}

RC_GTEST_PROP(Pieces, ConditionReadsPutTogetherGiveTheWholeRun, ())
{
    const int limit = *rc::gen::inRange(1, 124);
    const Run run = drawRun(limit);
    const LinkUnderTest link(limit);

    intf_addConditionRead(wantedAddress(QStringLiteral("D"), run.address, run.count), 3);

    checkPieces(driver.conditionList, run, limit);
}

RC_GTEST_PROP(Pieces, ConditionReadsOfWholeRegistersAreCutAtEightBlocks, ())
{
    const int limit = *rc::gen::inRange(1, 30);
    const Run run = drawRun(8 * limit);
    const LinkUnderTest link(limit);
    KEY_ADDRESS wanted = wantedAddress(QStringLiteral("D"), run.address, run.count);
    wanted.subAddress = -1;

    intf_addConditionRead(wanted, 3);

    checkPieces(driver.conditionList, run, 8 * limit);
}

RC_GTEST_PROP(Pieces, TheSameWriteAgainTakesNoMoreRoom, ())
{
    const int limit = *rc::gen::inRange(1, 20);
    const Run run = drawRun(limit);
    LinkUnderTest link(limit);
    link.write(QStringLiteral("D"), 9999, { 1 }); // the head, which is never replaced
    link.write(QStringLiteral("F"), run.address,
               std::vector<int>(static_cast<std::size_t>(run.count), 1));
    const int waiting = static_cast<int>(driver.writeList.size());

    link.write(QStringLiteral("F"), run.address,
               std::vector<int>(static_cast<std::size_t>(run.count), 2));

    RC_ASSERT(driver.writeList.size() == waiting);
    for (int i = 1; i < waiting; ++i)
        RC_ASSERT(driver.writeList.at(i).data[0] == 2);
}
