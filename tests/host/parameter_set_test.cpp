// SPDX-License-Identifier: MIT
// Parameter sets as text: written, read back, compared.
#include "host/parameters/parameter_set.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

using namespace dx4::host;

namespace {

ParameterSet complete()
{
    ParameterSet set;
    set.station = 3;
    for (int address : allParameters())
        set.values.insert(address, static_cast<quint16>(address));
    return set;
}

struct TextRow {
    const char *name;
    const char *text;
    const char *error;
};

class ParameterText : public ::testing::TestWithParam<TextRow> { };

} // namespace

TEST(ParameterSet, TheDriveHas203Parameters)
{
    const QVector<int> all = allParameters();

    EXPECT_EQ(all.size(), 203);
    EXPECT_EQ(all.constFirst(), 0x0000);
    EXPECT_EQ(all.constLast(), 0x0A0D);
}

TEST(ParameterSet, ASetComesBackFromItsText)
{
    ParameterSet set = complete();
    set.values.remove(0x0802);
    set.refused = { 0x0802 };
    QString error;

    const auto parsed = parseParameterSet(toText(set), &error);

    ASSERT_TRUE(parsed.has_value()) << error.toStdString();
    EXPECT_EQ(*parsed, set);
    EXPECT_TRUE(isComplete(*parsed));
    EXPECT_EQ(error.toStdString(), "");
}

TEST(ParameterSet, TheTextNamesRegistersAsTheDriveDoes)
{
    ParameterSet set;
    set.values = { { 0x0A0D, 65535 }, { 0x0003, 7 } };
    set.refused = { 0x0802 };

    EXPECT_EQ(toText(set).toStdString(),
              "# F registers of one drive\nstation 1\nF 0.3 = 7\nF 8.2 refused\nF c.13 = 65535\n");
}

TEST(ParameterSet, OnlyACompleteSetSaysSo)
{
    ParameterSet set = complete();
    const QString whole = toText(set);
    set.values.remove(0);
    const QString part = toText(set);

    EXPECT_TRUE(whole.endsWith(QStringLiteral("\ncomplete\n")));
    EXPECT_FALSE(part.contains(QStringLiteral("complete")));
}

TEST(ParameterSet, CommentsAndBlanksAreSkipped)
{
    const auto set = parseParameterSet(
        QStringLiteral("# mine\n\n  station 2 # the fan\nF  8.2 =  5\r\nF C.1 = 6\n"), nullptr);

    ASSERT_TRUE(set.has_value());
    EXPECT_EQ(set->station, 2);
    EXPECT_EQ(set->values, (QMap<int, quint16> { { 0x0802, 5 }, { 0x0A01, 6 } }));
}

TEST(ParameterSet, DifferencesNameBothValues)
{
    ParameterSet first;
    first.values = { { 0x0000, 1 }, { 0x0001, 2 }, { 0x0A0D, 3 } };
    ParameterSet second;
    second.values = { { 0x0000, 1 }, { 0x0001, 9 }, { 0x0100, 4 } };

    const QVector<ParameterDifference> differences = compare(first, second);

    ASSERT_EQ(differences.size(), 3);
    EXPECT_EQ(differences.at(0).text().toStdString(), "F 0.1 (0xF001): 2 | 9");
    EXPECT_EQ(differences.at(1).text().toStdString(), "F 1.0 (0xF100): - | 4");
    EXPECT_EQ(differences.at(2).text().toStdString(), "F c.13 (0xFC0D): 3 | -");
}

TEST(ParameterSet, NothingMayFollowItsEnd)
{
    QString error;

    const auto set = parseParameterSet(toText(complete()) + QStringLiteral("F 0.0 = 1\n"), &error);

    EXPECT_FALSE(set.has_value());
    EXPECT_EQ(error.toStdString(), "line 207: nothing may follow \"complete\"");
}

TEST(ParameterSet, StationsAre1To247)
{
    const auto first = parseParameterSet(QStringLiteral("station 1"), nullptr);
    const auto last = parseParameterSet(QStringLiteral("station 247"), nullptr);

    ASSERT_TRUE(first.has_value() && last.has_value());
    EXPECT_EQ(first->station, 1);
    EXPECT_EQ(last->station, 247);
    EXPECT_FALSE(parseParameterSet(QStringLiteral("station 0"), nullptr).has_value());
    EXPECT_FALSE(parseParameterSet(QStringLiteral("station 248"), nullptr).has_value());
}

TEST(ParameterSet, TwoAreEqualInStationValuesAndRefusals)
{
    ParameterSet set;
    set.values = { { 0x0000, 1 } };
    set.refused = { 0x0001 };
    ParameterSet otherStation = set;
    otherStation.station = 2;
    ParameterSet otherValue = set;
    otherValue.values = { { 0x0000, 2 } };
    ParameterSet otherRefusal = set;
    otherRefusal.refused = { 0x0002 };

    EXPECT_TRUE(set == ParameterSet(set));
    EXPECT_FALSE(set == otherStation);
    EXPECT_FALSE(set == otherValue);
    EXPECT_FALSE(set == otherRefusal);
}

TEST(ParameterSet, AFileIsSavedAndLoaded)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("fan.txt"));
    QString error;

    const bool saved = saveParameterSet(path, complete(), &error);
    const auto loaded = loadParameterSet(path, &error);

    EXPECT_TRUE(saved);
    ASSERT_TRUE(loaded.has_value()) << error.toStdString();
    EXPECT_EQ(*loaded, complete());
    EXPECT_EQ(error.toStdString(), "");
}

TEST(ParameterSet, AMissingFileIsNamed)
{
    QString error;

    const auto loaded = loadParameterSet(QStringLiteral("/none/fan.txt"), &error);

    EXPECT_FALSE(loaded.has_value());
    EXPECT_EQ(error.toStdString(), "/none/fan.txt: No such file or directory");
}

TEST(ParameterSet, AWrongLineOfAFileIsNamedAsEditorsShowIt)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("fan.txt"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("station 1\nD 0 = 1\n") > 0);
    file.close();
    QString error;

    const auto loaded = loadParameterSet(path, &error);

    EXPECT_FALSE(loaded.has_value());
    EXPECT_EQ(error, path + QStringLiteral(":2: expected a line such as \"F 8.2 = 5\""));
}

TEST_P(ParameterText, IsRefusedWithItsLine)
{
    QString error;

    const auto set = parseParameterSet(QString::fromUtf8(GetParam().text), &error);

    EXPECT_FALSE(set.has_value());
    EXPECT_EQ(error.toStdString(), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    ParameterSet, ParameterText,
    ::testing::Values(
        TextRow { "WithoutStation", "F 0.0 = 1\n",
                  "line 1: expected a line such as \"station 1\"" },
        TextRow { "Station248", "station 248\n", "line 1: no station; stations are 1 to 247" },
        TextRow { "StationWithASign", "station +2\n", "line 1: no station; stations are 1 to 247" },
        TextRow { "StationInOtherDigits", "station \u0662\n",
                  "line 1: no station; stations are 1 to 247" },
        TextRow { "TwoStations", "station 1\nstation 2\n",
                  "line 2: the station stands here twice" },
        TextRow { "AValueOfManyDigits", "station 1\nF 0.0 = 4294967296\n",
                  "line 2: a value is 0 to 65535" },
        TextRow { "AValueInHexadecimal", "station 1\nF 0.0 = 0x10\n",
                  "line 2: expected a line such as \"F 8.2 = 5\"" },
        TextRow { "C14IsPastTheEndOfGroupC", "station 1\nF c.14 = 1\n",
                  "line 2: the drive has no F c.14" },
        TextRow { "AnotherType", "station 1\nD 0 = 1\n",
                  "line 2: expected a line such as \"F 8.2 = 5\"" },
        TextRow { "AValueAbove16Bits", "station 1\nF 0.0 = 65536\n",
                  "line 2: a value is 0 to 65535" },
        TextRow { "ARegisterTwice", "station 1\nF 0.0 = 1\nF 0.0 = 1\n",
                  "line 3: F 0.0 stands here twice" },
        TextRow { "CompleteThoughCutOff", "station 1\nF 0.0 = 1\ncomplete\n",
                  "line 3: the set is said to be complete, but 202 of 203 registers are missing" },
        TextRow { "CompleteThoughARefusalIsAllElse",
                  "station 1\nF 0.0 = 1\nF 0.1 refused\ncomplete\n",
                  "line 4: the set is said to be complete, but 201 of 203 registers are missing" },
        TextRow { "ARefusedRegisterTwice", "station 1\nF 0.0 refused\nF 0.0 = 1\n",
                  "line 3: F 0.0 stands here twice" }),
    [](const ::testing::TestParamInfo<TextRow> &row) { return std::string(row.param.name); });
