// SPDX-License-Identifier: MIT
// The bounds of the send queue, whatever a host asks for and whatever the line does.
#include "link_under_test.h"
#include "property.h"

namespace {

constexpr int serves = 120;

// Answers the head frame rightly, or lets it fail until it is given up.
void answerHead(bool rightly)
{
    QString errorText;
    const FRAME_PRO &head = driver.sendFrames.constFirst();
    QByteArray reply;
    if (rightly)
        reply = withCrc(QByteArray(head.replyLength - 2, '\x01'));
    const int phase = driver.phase;
    const int limit = driver.retryLimit;
    for (int tries = 0; tries < limit && !driver.sendFrames.isEmpty(); ++tries)
        intf_dealRcvFrame(reply, errorText);
    RC_ASSERT(driver.sendFrames.isEmpty() && driver.phase == phase);
}

// A host that writes and asks for reads at random, more often than the line carries.
void askForSomething(LinkUnderTest &link)
{
    const int address = *rc::gen::inRange(0, 40);
    const int kind = *rc::gen::inRange(0, 3);
    if (kind == 0)
        link.write(QStringLiteral("F"), address, { address });
    else if (kind == 1)
        link.readOnce(QStringLiteral("D"), address, 1 + address % 3);
}

int serveNext()
{
    FRAME_PRO frame;
    return intf_getSendFrame(frame) == 1 ? driver.phase : 0;
}

} // namespace

RC_GTEST_PROP(Scheduler, NoMoreThanFiveOthersBetweenTwoCyclicReads, ())
{
    LinkUnderTest link(16, *rc::gen::inRange(1, 4));
    link.poll(QStringLiteral("D"), 0, 3);
    int sinceCyclicRead = 0;
    for (int i = 0; i < serves; ++i) {
        for (int asked = *rc::gen::inRange(0, 4); asked > 0; --asked)
            askForSomething(link);

        const int phase = serveNext();
        answerHead(*rc::gen::inRange(0, 4) != 0);

        RC_ASSERT(phase == 2 || phase == 3 || phase == 4);
        sinceCyclicRead = phase == 4 ? 0 : sinceCyclicRead + 1;
        RC_ASSERT(sinceCyclicRead <= 5);
    }
}

RC_GTEST_PROP(Scheduler, AConditionReadIsNeverServedAfterThreeOthers, ())
{
    LinkUnderTest link(16);
    link.poll(QStringLiteral("D"), 0, 3);
    int sinceCyclicRead = 0;
    for (int i = 0; i < serves; ++i) {
        askForSomething(link);
        askForSomething(link);

        const int phase = serveNext();
        answerHead(true);

        RC_ASSERT(phase != 3 || sinceCyclicRead < 3);
        sinceCyclicRead = phase == 4 ? 0 : sinceCyclicRead + 1;
    }
}

RC_GTEST_PROP(Scheduler, NoCyclicReadComesBeforeADueWrite, ())
{
    LinkUnderTest link(16);
    link.poll(QStringLiteral("D"), 0, 3);
    int sinceCyclicRead = 0;
    for (int i = 0; i < serves; ++i) {
        askForSomething(link);
        const bool writeIsDue = !driver.writeList.isEmpty() && sinceCyclicRead < 5;

        const int phase = serveNext();
        answerHead(true);

        RC_ASSERT((phase == 2) == writeIsDue);
        sinceCyclicRead = phase == 4 ? 0 : sinceCyclicRead + 1;
    }
}

RC_GTEST_PROP(Scheduler, EachCyclicReadHasItsTurn, ())
{
    const int blocks = *rc::gen::inRange(1, 12);
    LinkUnderTest link(1);
    link.poll(QStringLiteral("D"), 0, 1);
    driver.readList.clear();
    for (int i = 0; i < blocks; ++i) {
        VARIABLE read;
        read.station = 1;
        read.regType = QStringLiteral("D");
        read.address = i;
        read.count = 1;
        driver.readList.append(read);
    }
    for (int i = 0; i < 3 * blocks; ++i) {
        const int phase = serveNext();
        const int address = driver.curVar.address;
        answerHead(*rc::gen::inRange(0, 3) != 0);

        RC_ASSERT(phase == 4);
        RC_ASSERT(address == i % blocks);
    }
}

RC_GTEST_PROP(Scheduler, NoQueueGrowsPast513, ())
{
    LinkUnderTest link(*rc::gen::inRange(1, 5));
    const int requests = *rc::gen::inRange(1, 40);
    for (int i = 0; i < requests; ++i) {
        const int address = *rc::gen::inRange(0, 2000);
        const int count = *rc::gen::inRange(1, 120);
        if (*rc::gen::inRange(0, 2) == 0)
            link.write(QStringLiteral("F"), address,
                       std::vector<int>(static_cast<std::size_t>(count), 1));
        else
            link.readOnce(QStringLiteral("D"), address, count);

        RC_ASSERT(driver.writeList.size() <= 513);
        RC_ASSERT(driver.conditionList.size() <= 513);
    }
}
