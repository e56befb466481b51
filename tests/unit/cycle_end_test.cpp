// SPDX-License-Identifier: MIT
// Closing a request, phase by phase, whatever state the host left the lists in.
#include "korvane_dx4/cycle_end.h"

#include "driver_state.h"

using Calls = std::vector<std::string>;

namespace {

class Closing : public DriverState {
protected:
    /// A written register that waits to be settled.
    void pend(int address, unsigned char written)
    {
        _DATA_ &data = record(1, "F", address);
        data.flags = 1;
        data.writePending = 1;
        data.writeValue[0] = written;
    }

    static QVector<_RCP_VAR_PRO> transfers(int count)
    {
        return QVector<_RCP_VAR_PRO>(count, _RCP_VAR_PRO());
    }
};

} // namespace

TEST_F(Closing, AServedWriteSettlesTheHeadAsSuccess)
{
    pend(5, 0x11);
    driver.writeList = { variableOf(1, "F", 5, 1), variableOf(1, "F", 9, 1) };
    driver.phase = 2;
    driver.lastFailed = 0;

    dealListWhenFinish();

    EXPECT_EQ(record(1, "F", 5).writePending, 0);
    EXPECT_EQ(record(1, "F", 5).value[0], 0x11);
    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(listText(driver.writeList), "1 F 9 1");
}

TEST_F(Closing, AFailedWriteSettlesTheHeadAsFailure)
{
    pend(5, 0x11);
    driver.writeList = { variableOf(1, "F", 5, 1), variableOf(1, "F", 9, 1) };
    driver.phase = 2;
    driver.lastFailed = 1;

    dealListWhenFinish();

    EXPECT_EQ(record(1, "F", 5).writePending, 0);
    EXPECT_EQ(record(1, "F", 5).value[0], 0);
    EXPECT_EQ(calls, (Calls { "1 1 F 5" }));
    EXPECT_EQ(listText(driver.writeList), "1 F 9 1");
}

TEST_F(Closing, AWriteWithNothingWaitingDoesNothing)
{
    pend(5, 0x11);
    driver.phase = 2;

    dealListWhenFinish();

    EXPECT_EQ(record(1, "F", 5).writePending, 1);
    EXPECT_EQ(cacheKeys(), "1 F 5");
}

TEST_F(Closing, AConditionReadWithNothingWaitingReportsNothing)
{
    driver.phase = 3;

    dealListWhenFinish();

    EXPECT_EQ(calls, Calls {});
}

TEST_F(Closing, AConditionReadReportsItsOutcomeBeforeTheListChanges)
{
    driver.conditionVar = variableOf(1, "D", 5, 1);
    driver.conditionList = { variableOf(1, "D", 5, 1), variableOf(1, "D", 6, 1) };
    driver.phase = 3;
    driver.lastFailed = 1;
    std::string inside;
    insideCallback = [&] { inside = listText(driver.conditionList); };

    dealListWhenFinish();

    EXPECT_EQ(calls, (Calls { "-1 -1 -1 -1" }));
    EXPECT_EQ(inside, "1 D 5 1; 1 D 6 1");
    EXPECT_EQ(listText(driver.conditionList), "");
}

TEST_F(Closing, ACyclicReadOfThreeRotates)
{
    driver.readList = { variableOf(1, "D", 0, 1), variableOf(1, "D", 5, 1),
                        variableOf(1, "D", 9, 1) };
    driver.phase = 4;

    dealListWhenFinish();

    EXPECT_EQ(listText(driver.readList), "1 D 5 1; 1 D 9 1; 1 D 0 1");
}

TEST_F(Closing, ACyclicReadOfOneStays)
{
    driver.readList = { variableOf(1, "D", 0, 1) };
    driver.phase = 4;

    dealListWhenFinish();

    EXPECT_EQ(listText(driver.readList), "1 D 0 1");
}

TEST_F(Closing, TwoRecipeReadsAdvanceThenClearTheirByte)
{
    driver.rcpSendVars = transfers(2);
    hostBlock[60115] = 1;
    hostBlock[60116] = 1;
    driver.phase = 6;

    dealListWhenFinish();
    EXPECT_EQ(driver.rcpIndex, 1);
    EXPECT_EQ(hostBlock[60116], 1);

    dealListWhenFinish();
    EXPECT_EQ(driver.rcpIndex, 0);
    EXPECT_EQ(hostBlock[60116], 0);
    EXPECT_EQ(hostBlock[60115], 1);
}

TEST_F(Closing, AFailureOnTheFirstOfThreeRecipeWritesClearsTheByteAtOnce)
{
    driver.rcpSendVars = transfers(3);
    hostBlock[60115] = 1;
    hostBlock[60116] = 1;
    driver.phase = 5;
    driver.lastFailed = 1;

    dealListWhenFinish();

    EXPECT_EQ(driver.rcpIndex, 0);
    EXPECT_EQ(hostBlock[60115], 0);
    EXPECT_EQ(hostBlock[60116], 1);
}

TEST_F(Closing, ARecipeTransferReleasesTheMutex)
{
    driver.phase = 5;

    dealListWhenFinish();

    ASSERT_TRUE(mutex.tryLock());
    mutex.unlock();
}

TEST_F(Closing, ARecipeTransferWithoutBlockOrMutexOnlyResetsTheIndex)
{
    hostBlock[60115] = 1;
    driver.rcpIndex = 2;
    driver.phase = 5;
    driver.hostMutex = nullptr;

    dealListWhenFinish();
    EXPECT_EQ(driver.rcpIndex, 0);
    EXPECT_EQ(hostBlock[60115], 1);

    driver.rcpIndex = 2;
    driver.hostMutex = &mutex;
    driver.hostBlock = nullptr;
    dealListWhenFinish();
    EXPECT_EQ(driver.rcpIndex, 0);
}

namespace {

class OtherPhase : public Closing, public ::testing::WithParamInterface<int> { };

} // namespace

TEST_P(OtherPhase, ClosesNothing)
{
    pend(5, 0x11);
    driver.writeList = { variableOf(1, "F", 5, 1) };
    driver.conditionList = { variableOf(1, "D", 5, 1) };
    driver.conditionVar = variableOf(1, "D", 5, 1);
    driver.readList = { variableOf(1, "D", 0, 1), variableOf(1, "D", 5, 1) };
    driver.rcpIndex = 3;
    hostBlock[60115] = 1;
    hostBlock[60116] = 1;
    driver.phase = GetParam();

    dealListWhenFinish();

    EXPECT_EQ(listText(driver.writeList), "1 F 5 1");
    EXPECT_EQ(listText(driver.conditionList), "1 D 5 1");
    EXPECT_EQ(listText(driver.readList), "1 D 0 1; 1 D 5 1");
    EXPECT_EQ(driver.rcpIndex, 3);
    EXPECT_EQ(hostBlock[60115], 1);
    EXPECT_EQ(hostBlock[60116], 1);
    EXPECT_EQ(record(1, "F", 5).writePending, 1);
    EXPECT_EQ(calls, Calls {});
}

INSTANTIATE_TEST_SUITE_P(Values, OtherPhase, ::testing::Values(-1, 0, 1, 7, 100));
