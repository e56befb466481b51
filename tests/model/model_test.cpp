// SPDX-License-Identifier: MIT
// The model alone, against worked examples.
#include "model_fixture.h"

TEST_F(Model, ComputesThePublishedCrcCheckValue)
{
    const unsigned char digits[] = { '1', '2', '3', '4', '5', '6', '7', '8', '9' };

    const int crc = model::crcOf(digits, 9);

    EXPECT_EQ(crc, 0x4B37);
}

TEST_F(Model, ReadsTheFaultCodeAtItsFixedRegister)
{
    poll({ key(1, "FU", 0, 1) });

    const std::string frame = next();

    EXPECT_EQ(frame, "010320010001de0a");
    EXPECT_EQ(dx4.sendFrames.at(0).replyLength, 7);
    EXPECT_EQ(dx4.sendFrames.at(0).replyDataLength, 2);
    EXPECT_EQ(dx4.sendFrames.at(0).replyDataOffset, 3);
}

TEST_F(Model, SendsGroupCAsFc)
{
    poll({ key(1, "F", 0x0A0C, 1) });

    const std::string frame = next();

    EXPECT_EQ(frame.substr(0, 12), "0103fc0c0001");
}

TEST_F(Model, WritesOneParameterWithItsHighByteFirst)
{
    write("F", 0, { 0x34, 0x12 });

    const std::string frame = next();

    EXPECT_EQ(frame.substr(0, 12), "0106f0001234");
}

TEST_F(Model, WritesThreeParametersInOneFrame)
{
    write("F", 0x0102, { 1, 0, 2, 0, 3, 0 });

    const std::string frame = next();

    EXPECT_EQ(frame.substr(0, 26), "0110f102000306000100020003");
    EXPECT_EQ(dx4.sendFrames.at(0).sendLength, 15);
}

TEST_F(Model, LeavesAControlWordOfTwoRegistersAtTheHead)
{
    write("CW", 0, { 1, 0, 2, 0 });

    const std::string frame = next();

    EXPECT_EQ(frame, "nothing");
    EXPECT_EQ(dx4.phase, 2);
    EXPECT_EQ(dx4.tryCount, 1);
    EXPECT_EQ(dx4.writeList.size(), 1);
}

TEST_F(Model, PutsTheCrcOfAWriteOfMinusThreeOverItsHead)
{
    dx4.setData(1, latin("F"), 0, -3, nullptr, 0);

    const std::string frame = next();

    EXPECT_EQ(dx4.sendFrames.at(0).sendLength, 3);
    EXPECT_EQ(frame, "017e80"); // the CRC of the station byte alone
}

TEST_F(Model, MergesNeighboursUpToTheBlockSize)
{
    init("1#0#0#3#2");
    poll({ key(1, "D", 2, 1), key(1, "D", 1, 1), key(1, "D", 0, 1) });

    const int blocks = static_cast<int>(dx4.readList.size());

    ASSERT_EQ(blocks, 2);
    EXPECT_EQ(dx4.readList.at(0).address, 0);
    EXPECT_EQ(dx4.readList.at(0).count, 2);
    EXPECT_EQ(dx4.readList.at(1).address, 2);
    EXPECT_EQ(dx4.readList.at(1).varKind, 4);
}

TEST_F(Model, ShortensABlockToTheEndOfAContainedAddress)
{
    poll({ key(1, "D", 0, 10), key(1, "D", 2, 1) });

    ASSERT_EQ(dx4.readList.size(), 1);
    EXPECT_EQ(dx4.readList.at(0).count, 3);
}

TEST_F(Model, MergesAcrossStationsToANegativeCount)
{
    poll({ key(1, "D", 5, 1), key(2, "D", 3, 1) });

    ASSERT_EQ(dx4.readList.size(), 1);
    EXPECT_EQ(dx4.readList.at(0).station, 1);
    EXPECT_EQ(dx4.readList.at(0).count, -1);
}

TEST_F(Model, StoresAndReportsAMonitoredChangeOnce)
{
    poll({ key(1, "D", 7, 1) });
    next();

    const int first = reply(withCrc("0103020001"));
    next();
    const int second = reply(withCrc("0103020001"));

    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
    EXPECT_EQ(calls, Calls({ "1 1 D 7" }));
    EXPECT_EQ(value("D", 7), "0100");
    EXPECT_EQ(errorText, latin("1#D7(1)(7)"));
}

TEST_F(Model, GivesUpAtTheRetryLimit)
{
    poll({ key(1, "D", 7, 1) });
    next();

    const int first = reply({});
    const int second = reply(fromHex("0103020001ffff"));
    const int third = reply(withCrc("018302"));

    EXPECT_EQ(first, 8);
    EXPECT_EQ(second, 8);
    EXPECT_EQ(third, 2);
    EXPECT_EQ(dx4.dataAreas.at(0).flag0, 1);
    EXPECT_TRUE(dx4.sendFrames.isEmpty());
    EXPECT_EQ(errorText, latin("1#D7(1)(5)"));
}

TEST_F(Model, ReportsBitsThenTheRegisterThenDoubles)
{
    write("F", 2, { 0, 0 });
    dx4.dataAreas[0].flags = 7;
    dx4.dataAreas[0].bitMask = 8;
    calls.clear();

    write("F", 2, { 8, 0 });

    EXPECT_EQ(calls, Calls({ "1 1 F_bit 35", "1 1 F 2", "1 1 F_double 2", "1 1 F_double 1" }));
}

TEST_F(Model, SplitsAWriteAndTakesTheRemainderLast)
{
    init("1#0#0#3#4");
    std::vector<unsigned char> data;
    for (unsigned char i = 0; i < 20; ++i)
        data.push_back(i);

    write("F", 0, data);

    ASSERT_EQ(dx4.writeList.size(), 3);
    EXPECT_EQ(dx4.writeList.at(1).address, 4);
    EXPECT_EQ(dx4.writeList.at(1).count, 4);
    EXPECT_EQ(dx4.writeList.at(2).address, 8);
    EXPECT_EQ(dx4.writeList.at(2).count, 2);
    EXPECT_EQ(dx4.writeList.at(2).data[0], 16);
    EXPECT_EQ(dx4.writeList.at(2).data[3], 19);
    EXPECT_EQ(dx4.writeList.at(2).data[4], 0);
}

TEST_F(Model, StopsTheWriteQueueAt513)
{
    for (unsigned char i = 0; i < 2; ++i) {
        for (int address = 0; address < 300; ++address)
            write("F", 1000 * i + address, { i, 0 });
    }

    EXPECT_EQ(dx4.writeList.size(), 513);
    EXPECT_EQ(dx4.writeList.at(511).address, 1211);
    EXPECT_EQ(dx4.writeList.at(512).address, 1299);
}

TEST_F(Model, SettlesAWriteOnItsEcho)
{
    write("F", 0, { 5, 0 });
    next();

    const int result = reply(withCrc("0106f0000005"));

    EXPECT_EQ(result, 1);
    EXPECT_EQ(dx4.dataAreas.at(0).value[0], 5);
    EXPECT_EQ(dx4.dataAreas.at(0).writePending, 0);
    EXPECT_TRUE(dx4.writeList.isEmpty());
}

TEST_F(Model, ReportsAFailedWriteTwice)
{
    init("1#0#0#1#16");
    poll({ key(1, "F", 0, 1) });
    write("F", 0, { 5, 0 });
    next();
    calls.clear();

    const int result = reply({});

    EXPECT_EQ(result, 2);
    EXPECT_EQ(calls, Calls({ "1 1 F 0", "1 1 F 0" }));
    EXPECT_EQ(value("F", 0), "0000");
}

TEST_F(Model, CutsAConditionReadOfTwentyFiveInThree)
{
    init("1#0#0#3#10");

    dx4.addConditionRead(key(1, "D", 0, 25), 2);

    ASSERT_EQ(dx4.conditionList.size(), 3);
    EXPECT_EQ(dx4.conditionList.at(0).count, 10);
    EXPECT_EQ(dx4.conditionList.at(2).address, 20);
    EXPECT_EQ(dx4.conditionList.at(2).count, 5);
    EXPECT_EQ(dx4.conditionVar.address, 20);
}

TEST_F(Model, ReportsTheOutcomeOfTheLastConditionRead)
{
    dx4.addConditionRead(key(1, "D", 4, 1), 2);
    next();

    const int result = reply(withCrc("0103020000"));

    EXPECT_EQ(result, 1);
    EXPECT_EQ(calls, Calls({ "-1 -1 -1 0" }));
    EXPECT_TRUE(dx4.conditionList.isEmpty());
}

TEST_F(Model, ServesFiveWritesThenACyclicRead)
{
    poll({ key(1, "D", 0, 1) });
    for (int i = 0; i < 7; ++i)
        write("F", i, { 1, 0 });

    std::string served;
    for (int i = 0; i < 8; ++i) {
        next();
        served += std::to_string(dx4.phase);
        reply(dx4.phase == 2 ? withCrc("0106f0000001") : withCrc("0103020000"));
    }

    EXPECT_EQ(served, "22222422");
}

TEST_F(Model, ServesTheSameReadAgainWhileARecipeByteIsRaised)
{
    poll({ key(1, "D", 0, 1) });
    next();
    reply(withCrc("0103020000"));
    block[60115] = 1;
    write("F", 0, { 1, 0 });

    const std::string frame = next();

    EXPECT_EQ(frame.substr(0, 12), "0103d0000001");
    EXPECT_EQ(dx4.phase, 4);
}

TEST_F(Model, TransfersRecipeVariablesAndClearsTheByte)
{
    recipe[3] = 0x1234;
    _RCP_VAR_PRO transfer;
    transfer.station = 1;
    transfer.regType = latin("F");
    transfer.count = 1;
    transfer.bufferOffset = 3;
    dx4.rcpSendVars.append(transfer);
    block[60115] = 1;

    const std::string frame = next();
    reply(withCrc("0106f0001234"));

    EXPECT_EQ(frame.substr(0, 12), "0106f0001234");
    EXPECT_EQ(block[60115], 0);
    EXPECT_EQ(dx4.rcpIndex, 0);
}

TEST_F(Model, StoresARecipeValueLowWordFirst)
{
    _RCP_VAR_PRO transfer;
    transfer.linkId = 1;
    transfer.station = 1;
    transfer.regType = latin("F");
    transfer.count = 2;
    transfer.bufferOffset = 4;
    dx4.setRcpAddress({ transfer });
    dx4.rcpSendVars.append(transfer);
    dx4.mergeIndexList.append(0);
    block[60116] = 1;
    next();

    reply(withCrc("01030411223344"));

    EXPECT_EQ(recipe[4], 0x3344);
    EXPECT_EQ(recipe[5], 0x1122);
    EXPECT_EQ(calls, Calls({ "0 -1 RWI 4", "0 -1 RWI 5" }));
    EXPECT_EQ(block[60116], 0);
}

TEST_F(Model, KeepsTheRecipeVariablesOfItsLink)
{
    QVector<_RCP_VAR_PRO> list(3);
    list[0].linkId = 1;
    list[1].linkId = 2;
    list[2].linkId = 1;
    list[2].address = 9;

    const int kept = dx4.setRcpAddress(list);

    EXPECT_EQ(kept, 2);
    EXPECT_EQ(dx4.rcpVars.at(1).address, 9);
}
