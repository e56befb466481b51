// SPDX-License-Identifier: MIT
// What a link lends the driver, and the way back from its callback.
#include "host/link/link.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using namespace dx4::host;
using Texts = std::vector<std::string>;

namespace {

std::unique_ptr<Plugin> privateCopy()
{
    return Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy);
}

const QString typeD = QStringLiteral("D");

void record(Link &link, Texts &changes)
{
    link.onChange([&changes](const ValueChange &change) {
        changes.push_back(std::to_string(change.linkNumber) + ' ' + std::to_string(change.station)
                          + ' ' + change.name.toStdString() + ' ' + std::to_string(change.address));
    });
}

std::string readText(const VARIABLE &read)
{
    return std::to_string(read.station) + ' ' + read.regType.toStdString() + ' '
        + std::to_string(read.address) + ' ' + std::to_string(read.count) + " as "
        + std::to_string(read.varKind);
}

} // namespace

TEST(LinkSettings, MakeThePropertyText)
{
    LinkSettings settings;
    settings.linkNumber = 4;
    settings.writesStayLocal = true;
    settings.retryLimit = 2;
    settings.blockSize = 20;

    EXPECT_EQ(settings.propertyText(), QByteArray("4#1#0#2#20"));
    EXPECT_EQ(LinkSettings().propertyText(), QByteArray("1#0#0#3#16"));
}

TEST(Link, TellsTheDriverItsSettings)
{
    LinkSettings settings;
    settings.linkNumber = 4;
    settings.retryLimit = 2;
    settings.blockSize = 20;

    const Link link(privateCopy(), settings);

    const korvane_dx4 &state = *link.api().state;
    EXPECT_EQ(state.linkId, 4);
    EXPECT_EQ(state.retryLimit, 2);
    EXPECT_EQ(state.blockSize, 20);
}

TEST(Link, LendsABlockWithBothRequestBytesAtRest)
{
    const Link link(privateCopy(), LinkSettings());

    const korvane_dx4 &state = *link.api().state;
    ASSERT_NE(state.hostBlock, nullptr);
    EXPECT_EQ(state.hostBlock[60115], 0);
    EXPECT_EQ(state.hostBlock[60116], 0);
    ASSERT_NE(state.recipeBuffer, nullptr);
    EXPECT_EQ(state.recipeBuffer[0], 0);
    EXPECT_EQ(state.recipeBuffer[65535], 0);
    EXPECT_NE(state.hostMutex, nullptr);
    EXPECT_EQ(state.hostParam, 0);
}

TEST(Link, PollsEachBlockAsItStandsAndInItsOrder)
{
    Link link(privateCopy(), LinkSettings());

    link.poll({ wanted(2, typeD, 1, 3), wanted(1, typeD, 4), wanted(1, typeD, 2, 2) });

    const QList<VARIABLE> &reads = link.api().state->readList;
    ASSERT_EQ(reads.size(), 3);
    EXPECT_EQ(readText(reads.at(0)), "2 D 1 3 as 4");
    EXPECT_EQ(readText(reads.at(1)), "1 D 4 1 as 4");
    EXPECT_EQ(readText(reads.at(2)), "1 D 2 2 as 4");
}

TEST(Link, PolledRegistersHaveRecordsThatAreMarkedAsPolled)
{
    Link link(privateCopy(), LinkSettings());

    link.poll({ wanted(2, typeD, 1), wanted(1, typeD, 2) });

    const auto &records = link.api().state->dataAreas;
    ASSERT_EQ(records.size(), 2);
    EXPECT_EQ(records.at(0).station, 2);
    EXPECT_EQ(records.at(0).address, 1);
    EXPECT_EQ(records.at(0).flags & 1, 1);
    EXPECT_EQ(records.at(1).station, 1);
    EXPECT_EQ(records.at(1).address, 2);
    EXPECT_EQ(records.at(1).flags & 1, 1);
}

TEST(Link, ShowsAWrittenValueWhileItsWriteWaits)
{
    Link link(privateCopy(), LinkSettings());

    link.write(1, QStringLiteral("F"), 3, { 0x1234, 0xFFFE });

    EXPECT_EQ(link.values(1, QStringLiteral("F"), 3, 2), (QVector<quint16> { 0x1234, 0xFFFE }));
    EXPECT_TRUE(link.registerState(1, QStringLiteral("F"), 4).writePending);
    EXPECT_EQ(link.waitingWrites(), 1);
}

TEST(Link, TellsRegistersApartByStationTypeAndAddress)
{
    Link link(privateCopy(), LinkSettings());
    link.write(1, QStringLiteral("F"), 0, { 0x0103, 0x0507 });
    link.write(2, QStringLiteral("F"), 0, { 0xFF01 });
    link.write(1, QStringLiteral("FRE"), 0, { 0x80FF });

    for (int i = 0; i < 2; ++i) { // looked for, then remembered
        EXPECT_EQ(link.registerState(1, QStringLiteral("F"), 0).value, 0x0103);
        EXPECT_EQ(link.registerState(1, QStringLiteral("F"), 1).value, 0x0507);
        EXPECT_EQ(link.registerState(2, QStringLiteral("F"), 0).value, 0xFF01);
        EXPECT_EQ(link.registerState(1, QStringLiteral("FRE"), 0).value, 0x80FF);
    }
    EXPECT_EQ(link.values(1, QStringLiteral("F"), 0, 2), (QVector<quint16> { 0x0103, 0x0507 }));
    EXPECT_EQ(link.values(2, QStringLiteral("F"), 0), QVector<quint16> { 0xFF01 });
}

TEST(Link, OfNoRegisterThereAreNoValues)
{
    Link link(privateCopy(), LinkSettings());

    EXPECT_TRUE(link.values(1, typeD, 0, 0).isEmpty());
    EXPECT_TRUE(link.values(1, typeD, 0, -1).isEmpty());
    EXPECT_EQ(link.values(1, typeD, 0, 2), (QVector<quint16> { 0, 0 }));
}

TEST(Link, PassesTheDriversLineAboutARequestOn)
{
    Link link(privateCopy(), LinkSettings());
    link.poll({ wanted(2, typeD, 3, 2) });
    FRAME_PRO frame;
    link.nextFrame(frame);
    QString text;

    const auto result = link.handReply(QByteArray(3, 'x'), &text);

    EXPECT_EQ(result, dx4::ReplyBad);
    EXPECT_EQ(text.toStdString(), "2#D3(2)(3)");
}

TEST(Link, KnowsWhatWaitsByItsTag)
{
    Link link(privateCopy(), LinkSettings());
    link.write(1, QStringLiteral("F"), 0, { 1 }, 7);
    link.addConditionRead(1, typeD, 0, 1, 8);

    EXPECT_TRUE(link.hasWrite(7));
    EXPECT_FALSE(link.hasWrite(8));
    EXPECT_TRUE(link.hasConditionRead(8));
    EXPECT_FALSE(link.hasConditionRead(7));
    EXPECT_EQ(link.waitingWrites(), 1);
    EXPECT_EQ(link.waitingConditionReads(), 1);
}

TEST(Link, FailsWritesAndNothingElse)
{
    Link link(privateCopy(), LinkSettings());
    link.poll({ wanted(1, typeD, 0) });

    link.failWrites();
    EXPECT_EQ(link.api().state->phase, dx4::PhaseIdle) << "no write waits";

    for (int i = 0; i < 20; ++i)
        link.write(1, QStringLiteral("F"), 2 * i, { 1 });
    EXPECT_EQ(link.waitingWrites(), 20);
    link.failWrites();
    EXPECT_EQ(link.waitingWrites(), 0);
    EXPECT_EQ(link.registerState(1, QStringLiteral("F"), 38).value, 0);
}

TEST(Link, FailsWhatIsAheadOfAWriteThatWaits)
{
    Link link(privateCopy(), LinkSettings());
    link.poll({ wanted(1, typeD, 0) });
    for (int i = 0; i < 12; ++i)
        link.write(1, QStringLiteral("F"), 2 * i, { 1 }, 100 + i);

    link.failAhead(111);

    FRAME_PRO frame;
    EXPECT_TRUE(link.nextFrame(frame));
    EXPECT_EQ(frame.var.varKind, 111);
    EXPECT_EQ(link.waitingWrites(), 1);
}

TEST(Link, FailsNothingAheadOfAWriteThatDoesNotWait)
{
    Link link(privateCopy(), LinkSettings());
    link.poll({ wanted(1, typeD, 0) });

    link.failAhead(1);

    EXPECT_TRUE(link.api().state->sendFrames.isEmpty());
}

TEST(Link, KnowsWhetherAWriteHandedOverNowWouldBeSentNext)
{
    Link link(privateCopy(), LinkSettings());
    link.poll({ wanted(1, typeD, 0) });
    FRAME_PRO frame;
    int agreed = 0;
    int sentNext = 0;

    for (int i = 0; i < 20; ++i) {
        const bool isNext = link.sendsWriteNext();
        link.write(1, QStringLiteral("F"), i % 2, { 1 }, 1000 + i);
        link.nextFrame(frame);
        agreed += isNext == (frame.var.varKind == 1000 + i) ? 1 : 0;
        sentNext += isNext ? 1 : 0;
        EXPECT_FALSE(link.sendsWriteNext()) << "a request is in progress";
        while (link.waitingWrites() > 0 || !link.api().state->sendFrames.isEmpty()) {
            link.nextFrame(frame);
            link.handReply(QByteArray());
        }
    }

    EXPECT_EQ(agreed, 20);
    EXPECT_EQ(sentNext, 17);
}

TEST(Link, FindsARegisterWhereverTheDriverHasMovedIt)
{
    Link link(privateCopy(), LinkSettings());
    link.write(1, QStringLiteral("F"), 3, { 30, 40, 50 });
    EXPECT_EQ(link.registerState(1, QStringLiteral("F"), 4).value, 40);

    link.api().state->dataAreas.move(1, 2);

    EXPECT_EQ(link.registerState(1, QStringLiteral("F"), 4).value, 40);
    EXPECT_EQ(link.registerState(1, QStringLiteral("F"), 5).value, 50);
    link.api().state->dataAreas.removeLast(); // the one of F 4
    EXPECT_EQ(link.registerState(1, QStringLiteral("F"), 4).value, 0);
}

TEST(Link, LooksAtAnUnknownRegisterWithoutCreatingIt)
{
    const Link link(privateCopy(), LinkSettings());

    const RegisterState state = link.registerState(1, typeD, 9);

    EXPECT_EQ(state.value, 0);
    EXPECT_FALSE(state.failed);
    EXPECT_TRUE(link.api().state->dataAreas.isEmpty());
}

TEST(Link, ReportsChangesUnderItsOwnNumber)
{
    LinkSettings settings;
    settings.linkNumber = 6;
    Link link(privateCopy(), settings);
    Texts changes;
    record(link, changes);
    link.poll({ wanted(2, QStringLiteral("F"), 3) });

    link.write(2, QStringLiteral("F"), 3, { 1 });

    EXPECT_EQ(changes, Texts { "6 2 F 3" });
}

TEST(Link, TwoLinksWithOneNumberHearOnlyTheirOwnChanges)
{
    Link left(privateCopy(), LinkSettings());
    Link right(privateCopy(), LinkSettings());
    Texts leftChanges;
    Texts rightChanges;
    record(left, leftChanges);
    record(right, rightChanges);
    left.poll({ wanted(1, QStringLiteral("F"), 3) });
    right.poll({ wanted(1, QStringLiteral("F"), 3) });

    right.write(1, QStringLiteral("F"), 3, { 1 });

    EXPECT_EQ(leftChanges, Texts {});
    EXPECT_EQ(rightChanges, Texts { "1 1 F 3" });
}

TEST(Link, AHandlerMayWriteOnAnotherLink)
{
    Link left(privateCopy(), LinkSettings());
    Link right(privateCopy(), LinkSettings());
    const QString typeF = QStringLiteral("F");
    left.poll({ wanted(1, typeF, 3), wanted(1, typeF, 4) });
    right.poll({ wanted(1, typeF, 3) });
    Texts changes;
    right.onChange([&changes](const ValueChange &) { changes.push_back("right"); });
    left.onChange([&](const ValueChange &change) {
        changes.push_back("left " + std::to_string(change.address));
        if (change.address == 3)
            right.write(1, typeF, 3, { 5 });
    });

    left.write(1, typeF, 3, { 7, 8 });

    EXPECT_EQ(changes, (Texts { "left 3", "right", "left 4" }));
}

namespace {

/// A link that polls F 3 to 5 of station 1 and whose handler throws "address A" at each change.
class ThrowingHandler : public ::testing::Test {
protected:
    ThrowingHandler()
    {
        link.poll({ wanted(1, typeF, 3, 3) });
        link.onChange([this](const ValueChange &change) {
            changes.push_back(std::to_string(change.address));
            throw std::runtime_error("address " + changes.back());
        });
    }

    /// What the call throws; empty when nothing.
    template <typename Call> static std::string thrownBy(Call call)
    {
        try {
            call();
        } catch (const std::exception &error) {
            return error.what();
        }
        return {};
    }

    const QString typeF = QStringLiteral("F");
    Link link { privateCopy(), LinkSettings() };
    Texts changes;
};

} // namespace

TEST_F(ThrowingHandler, EndsNoReply)
{
    FRAME_PRO request;
    link.nextFrame(request);

    const std::string thrown =
        thrownBy([&] { link.handReply(QByteArray::fromHex("010306000100020003FD74")); });

    EXPECT_EQ(thrown, "address 3");
    EXPECT_EQ(changes, (Texts { "3", "4", "5" }));
    EXPECT_EQ(link.values(1, typeF, 3, 3), (QVector<quint16> { 1, 2, 3 }));
    EXPECT_TRUE(link.api().state->sendFrames.isEmpty());
}

TEST_F(ThrowingHandler, EndsNoWrite)
{
    const std::string thrown = thrownBy([&] { link.write(1, typeF, 3, { 7, 8 }); });

    EXPECT_EQ(thrown, "address 3");
    EXPECT_EQ(changes, (Texts { "3", "4" }));
    EXPECT_EQ(link.values(1, typeF, 3, 2), (QVector<quint16> { 7, 8 }));
    EXPECT_EQ(link.waitingWrites(), 1);
}

TEST_F(ThrowingHandler, DoesNotKeepWritesFromBeingFailed)
{
    thrownBy([&] { link.write(1, typeF, 3, { 7 }); });
    thrownBy([&] { link.write(1, typeF, 4, { 8 }); });

    const std::string thrown = thrownBy([&] { link.failWrites(); });

    EXPECT_EQ(thrown, "address 3");
    EXPECT_EQ(link.waitingWrites(), 0);
}

TEST_F(ThrowingHandler, ThrowsFromEachCallAnew)
{
    thrownBy([&] { link.write(1, typeF, 3, { 7 }); });

    const std::string quiet = thrownBy([&] { link.values(1, typeF, 3); });
    const std::string thrown = thrownBy([&] { link.write(1, typeF, 4, { 8 }); });

    EXPECT_EQ(quiet, "");
    EXPECT_EQ(thrown, "address 4");
}

TEST_F(ThrowingHandler, OfAnotherLinkThrowsIntoTheHandlerThatWrote)
{
    Link left(privateCopy(), LinkSettings());
    left.poll({ wanted(1, typeF, 9) });
    std::string inside;
    left.onChange(
        [&](const ValueChange &) { inside = thrownBy([&] { link.write(1, typeF, 3, { 5 }); }); });

    const std::string outside = thrownBy([&] { left.write(1, typeF, 9, { 7 }); });

    EXPECT_EQ(inside, "address 3");
    EXPECT_EQ(outside, "");
}

TEST(Link, RefusesAPlugInThatIsNull)
{
    std::string reason;

    try {
        const Link link(nullptr, LinkSettings());
    } catch (const std::invalid_argument &error) {
        reason = error.what();
    }

    EXPECT_EQ(reason,
              "no driver: the plug-in is null; hand over one that Plugin::load() gave, which says "
              "why where it gives none");
}
