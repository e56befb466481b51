// SPDX-License-Identifier: MIT
// Loading, unloading and loading again, and what outlives the library.
#include "driver_fixture.h"

#include <dlfcn.h>

#include <memory>

namespace {

bool isLoaded()
{
    void *library = dlopen(KORVANE_PLUGIN_FILE, RTLD_NOW | RTLD_NOLOAD);
    if (library)
        dlclose(library);
    return library != nullptr;
}

std::string keptName;

void keepName(int, int, QString &name, int)
{
    keptName = name.toStdString();
}

QString keptString;

void keepString(int, int, QString &name, int)
{
    keptString = name;
}

void startLink(LoadedDriver &dx4, ValueChangeCallback callback = nullptr)
{
    dx4.setAddrValueChangeCallBack(callback);
    dx4.initProperty(nullptr, 0, nullptr, nullptr, "1#0#0#3#16", nullptr);
}

TEST(Unloading, ReallyRemovesTheLibrary)
{
    ASSERT_FALSE(isLoaded());

    {
        LoadedDriver dx4;
        EXPECT_TRUE(isLoaded());
    }

    EXPECT_FALSE(isLoaded());
}

TEST(Unloading, ReallyRemovesTheLibraryAfterUse)
{
    {
        LoadedDriver dx4;
        startLink(dx4, &keepName);
        QList<KEY_ADDRESS> addresses { keyAddress(1, "D", 0, 1) };
        dx4.addrMerge(addresses);
        unsigned char data[] = { 5, 0 };
        dx4.setData(1, QStringLiteral("D"), 0, 1, data, 0);
        FRAME_PRO frame;
        EXPECT_EQ(dx4.getSendFrame(frame), 1);
    }

    EXPECT_FALSE(isLoaded());
    EXPECT_EQ(keptName, "D");
}

TEST(Unloading, CallsNobodyBackWithRequestsInFlight)
{
    keptName.clear();

    {
        LoadedDriver dx4;
        startLink(dx4, &keepName);
        dx4.addConditionRead(keyAddress(1, "D", 0, 1), 0);
        FRAME_PRO frame;
        ASSERT_EQ(dx4.getSendFrame(frame), 1);
    }

    EXPECT_EQ(keptName, "");
}

TEST(Loading, AgainGivesFreshState)
{
    {
        LoadedDriver first;
        startLink(first, &keepName);
        unsigned char data[] = { 5, 0 };
        first.setData(1, QStringLiteral("F"), 0, 1, data, 0);
        first.setRcpAddress({ recipeVar(1, 1, "F", 0, 1, 0) });
        ASSERT_EQ(first.state->linkId, 1);
    }

    LoadedDriver second;

    EXPECT_EQ(second.state->linkId, 0);
    EXPECT_EQ(second.state->blockSize, 0);
    EXPECT_EQ(second.state->spare3, 0);
    EXPECT_EQ(second.state->valueChangeCallback, nullptr);
    EXPECT_TRUE(second.state->writeList.isEmpty());
    EXPECT_TRUE(second.state->dataAreas.isEmpty());
    EXPECT_TRUE(second.state->rcpVars.isEmpty());
    EXPECT_EQ(second.state->regTypeList.size(), 6);
}

TEST(Loading, AgainWorksTwentyTimes)
{
    for (int round = 0; round < 20; ++round) {
        LoadedDriver dx4;
        startLink(dx4);
        unsigned char data[] = { 0x34, 0x12 };
        dx4.setData(1, QStringLiteral("F"), 5, 1, data, 0);
        FRAME_PRO frame;
        ASSERT_EQ(dx4.getSendFrame(frame), 1) << "round " << round;
        ASSERT_EQ(toHex(frame.frame, 8), "01 06 F0 05 12 34 A7 BC") << "round " << round;
    }

    EXPECT_FALSE(isLoaded());
}

class Strings : public ::testing::Test {
protected:
    Strings()
        : dx4(std::make_unique<LoadedDriver>())
    {
        startLink(*dx4);
    }

    void unload()
    {
        dx4.reset();
        ASSERT_FALSE(isLoaded());
    }

    std::unique_ptr<LoadedDriver> dx4;
};

std::string joined(const QList<QString> &list)
{
    std::string text;
    for (const QString &entry : list)
        text += entry.toStdString() + ';';
    return text;
}

TEST_F(Strings, OfTheTypeListOutliveTheLibrary)
{
    QList<QString> list;
    dx4->getRegListByType(1, &list);

    unload();

    EXPECT_EQ(joined(list), "F;D;CW;SW;FRE;FU;");
}

TEST_F(Strings, OfADescriptionOutliveTheLibrary)
{
    QList<QString> list;
    dx4->getRegDiscription(QStringLiteral("F"), &list);

    unload();

    EXPECT_EQ(joined(list), "h.dd;0.0;c.28;1;1;");
}

TEST_F(Strings, OfCopiedAddressesOutliveTheLibrary)
{
    QVector<QString> texts;
    dx4->multiCopy(QStringLiteral("F"), 2573, 2, 1, &texts, nullptr);
    dx4->multiCopy(QStringLiteral("D"), 37, 2, 1, &texts, nullptr);

    unload();

    ASSERT_EQ(texts.size(), 4);
    EXPECT_EQ(texts.at(0).toStdString(), "c.13");
    EXPECT_EQ(texts.at(1).toStdString(), "c.13");
    EXPECT_EQ(texts.at(2).toStdString(), "37");
    EXPECT_EQ(texts.at(3).toStdString(), "37");
}

TEST_F(Strings, OfTheDefaultParametersOutliveTheLibrary)
{
    QString text;
    dx4->getDriverParameter(text);

    unload();

    EXPECT_EQ(text.toStdString(),
              "0,9600,8,NONE,1,0,1,192.168.0.1,8888,korvane_dx4,F,D,CW,SW,FRE,FU");
}

TEST_F(Strings, OfThePropertyPageOutliveTheLibrary)
{
    QString page;
    QString emptied = QStringLiteral("text");
    dx4->getDriverPropertyPage(page);
    dx4->setDriverPropertyPage(emptied);

    unload();

    EXPECT_EQ(page.toStdString(), "0_0");
    EXPECT_EQ(emptied.toStdString(), "");
}

TEST_F(Strings, OfTheErrorTextOutliveTheLibrary)
{
    QString errorText;
    QByteArray nothing;
    FRAME_PRO frame;
    dx4->addConditionRead(keyAddress(1, "D", 5, 2), 0);
    ASSERT_EQ(dx4->getSendFrame(frame), 1);
    ASSERT_EQ(dx4->dealRcvFrame(nothing, errorText), 8);

    unload();

    EXPECT_EQ(errorText.toStdString(), "1#D5(2)(0)");
}

TEST_F(Strings, OfTheEmptyErrorTextOutliveTheLibrary)
{
    QString errorText = QStringLiteral("before");
    QByteArray nothing;
    ASSERT_EQ(dx4->dealRcvFrame(nothing, errorText), 0);

    unload();

    EXPECT_EQ(errorText.toStdString(), "");
}

TEST_F(Strings, OfAFrameOutliveTheLibrary)
{
    FRAME_PRO frame;
    dx4->addConditionRead(keyAddress(1, "FRE", 5, 2), 0);
    ASSERT_EQ(dx4->getSendFrame(frame), 1);

    unload();

    EXPECT_EQ(frame.var.regType.toStdString(), "FRE");
}

TEST_F(Strings, OfMergedAddressesAndTheCacheOutliveTheLibrary)
{
    QList<KEY_ADDRESS> addresses { keyAddress(1, "SW", 0, 1) };
    dx4->addrMerge(addresses);
    const QList<_DATA_> cache = dx4->state->dataAreas;
    const QList<QString> types = dx4->state->regTypeList;

    unload();

    EXPECT_EQ(addresses.at(0).regType.toStdString(), "SW");
    EXPECT_EQ(cache.at(0).regType.toStdString(), "SW");
    EXPECT_EQ(joined(types), "F;D;CW;SW;FRE;FU;");
}

TEST_F(Strings, OfAReportedTypeOutliveTheLibrary)
{
    dx4->setAddrValueChangeCallBack(&keepString);
    QList<KEY_ADDRESS> addresses { keyAddress(1, "F", 5, 1) };
    dx4->addrMerge(addresses);
    unsigned char data[] = { 7, 0 };
    dx4->setData(1, QStringLiteral("F"), 5, 1, data, 0);

    unload();

    EXPECT_EQ(keptString.toStdString(), "F");
}

TEST_F(Strings, OfAReportedBitOutliveTheLibrary)
{
    dx4->setAddrValueChangeCallBack(&keepString);
    unsigned char data[] = { 0, 0 };
    dx4->getData(1, QStringLiteral("F"), 5, 1, data);
    dx4->state->dataAreas[0].bitMask = 1;
    data[0] = 1;
    dx4->setData(1, QStringLiteral("F"), 5, 1, data, 0);

    unload();

    EXPECT_EQ(keptString.toStdString(), "F_bit");
}

TEST_F(Strings, OfAReportedDoubleOutliveTheLibrary)
{
    dx4->setAddrValueChangeCallBack(&keepString);
    unsigned char data[] = { 0, 0 };
    dx4->getData(1, QStringLiteral("D"), 5, 1, data);
    dx4->state->dataAreas[0].flags = 2;
    data[0] = 1;
    dx4->setData(1, QStringLiteral("D"), 5, 1, data, 0);

    unload();

    EXPECT_EQ(keptString.toStdString(), "D_double");
}

TEST_F(Strings, OfAReportedRecipeUnitOutliveTheLibrary)
{
    std::vector<unsigned char> hostBlock(60117, 0);
    std::vector<unsigned short> recipeBuffer(16, 0);
    QMutex mutex;
    hostBlock[60116] = 1;
    dx4->setAddrValueChangeCallBack(&keepString);
    dx4->initProperty(hostBlock.data(), 0, recipeBuffer.data(), nullptr, "1#0#0#3#16", &mutex);
    dx4->setRcpAddress({ recipeVar(1, 1, "D", 0, 2, 3) });
    dx4->state->rcpSendVars = dx4->state->rcpVars;
    dx4->state->mergeIndexList.append(0);
    FRAME_PRO frame;
    ASSERT_EQ(dx4->getSendFrame(frame), 1);
    const std::vector<unsigned char> bytes = withCrc(fromHex("01 03 04 00 00 00 00"));
    QByteArray reply(reinterpret_cast<const char *>(bytes.data()), static_cast<int>(bytes.size()));
    QString errorText;
    ASSERT_EQ(dx4->dealRcvFrame(reply, errorText), 1);

    unload();

    EXPECT_EQ(keptString.toStdString(), "RWI");
}

TEST_F(Strings, OfAConditionReadsOutcomeOutliveTheLibrary)
{
    dx4->setAddrValueChangeCallBack(&keepString);
    dx4->addConditionRead(keyAddress(1, "D", 5, 1), 0);
    FRAME_PRO frame;
    ASSERT_EQ(dx4->getSendFrame(frame), 1);
    const std::vector<unsigned char> bytes = withCrc(fromHex("01 03 02 00 00"));
    QByteArray reply(reinterpret_cast<const char *>(bytes.data()), static_cast<int>(bytes.size()));
    QString errorText;
    ASSERT_EQ(dx4->dealRcvFrame(reply, errorText), 1);

    unload();

    EXPECT_EQ(keptString.toStdString(), "-1");
}

} // namespace
