// SPDX-License-Identifier: MIT
// How far a scan has come: kept, taken up again, and refused where it does not fit.
#include "cli/line/scan_state.h"

#include "full_disk.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace dx4::cli;

namespace {

class ScanStateTest : public ::testing::Test {
protected:
    std::optional<ScanState> loaded(const char *text) const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) >= 0);
        file.close();
        return loadScanState(path);
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("state.json"));
    QString error;
};

} // namespace

TEST_F(ScanStateTest, ComesBackAsItWasKept)
{
    const bool saved = saveScanState(path, { 3, 40, 11, { 4, 9 } }, &error);

    const auto state = loadScanState(path);

    EXPECT_TRUE(saved) << error.toStdString();
    ASSERT_TRUE(state.has_value());
    EXPECT_EQ(state->from, 3);
    EXPECT_EQ(state->to, 40);
    EXPECT_EQ(state->next, 11);
    EXPECT_EQ(state->found, (QVector<int> { 4, 9 }));
}

TEST_F(ScanStateTest, AFullDiskLeavesTheStateBefore)
{
    ASSERT_TRUE(saveScanState(path, { 1, 247, 2, {} }, &error));
    bool saved = true;
    {
        const FullDisk disk(10);
        saved = saveScanState(path, { 1, 247, 3, { 2 } }, &error);
    }

    EXPECT_FALSE(saved);
    EXPECT_EQ(error, path + QStringLiteral(": File too large; the file is as it was"));
    EXPECT_EQ(loadScanState(path)->next, 2);
}

TEST_F(ScanStateTest, WhatNoScanLeavesIsNoState)
{
    for (const char *text :
         { "", "{}", "[]", "{\"next\":0}", "{\"next\":249}", "{\"next\":2.5}", "{\"next\":\"2\"}",
           "{\"next\":2,\"found\":[2]}", "{\"next\":2,\"found\":[0]}",
           "{\"next\":2,\"found\":[1.5]}", "{\"from\":3,\"next\":2}", "{\"to\":3,\"next\":5}",
           "{\"to\":248,\"next\":5}", "{\"from\":0,\"next\":1}", "{\"to\":0,\"next\":1}" })
        EXPECT_FALSE(loaded(text).has_value()) << text;
    EXPECT_TRUE(loaded("{\"next\":248}").has_value());
}

TEST(ScanRange, AScanGoesOnWhereNoStationIsLeftOut)
{
    const ScanState state { 3, 20, 11, {} };

    EXPECT_TRUE(goesOn(state, 3, 20));
    EXPECT_TRUE(goesOn(state, 3, 21));
    EXPECT_FALSE(goesOn(state, 3, 19)) << "stations 20 would be forgotten";
    EXPECT_FALSE(goesOn(state, 3, 5)) << "none of them would be asked";
    EXPECT_FALSE(goesOn(state, 2, 20)) << "station 2 would be passed over";
    EXPECT_FALSE(goesOn(state, 4, 20));
}
