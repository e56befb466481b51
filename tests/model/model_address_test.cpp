// SPDX-License-Identifier: MIT
// The model's editor calls alone, against worked examples.
#include "driver_model.h"

#include <gtest/gtest.h>

namespace {

using model::DriverModel;

struct CheckRow {
    const char *name;
    const char *type;
    const char *text;
    int count;
    int accessMode;
    int check; ///< result of checkAddr
    int validity; ///< result of checkAddrValidity
    int address; ///< what checkAddrValidity stores
};

constexpr int untouched = -99;

constexpr CheckRow checkRows[] = {
    { "TheLastOfGroupC", "F", "c.13", 1, 0, 0, 0, 2573 },
    { "PastGroupC", "F", "c.14", 1, 0, 2, 2, 2574 },
    { "UpperCaseC", "F", "C.13", 1, 0, 0, 0, 2573 },
    { "TheLastOfGroup0", "F", "0.18", 1, 0, 0, 0, 18 },
    { "PastGroup0", "F", "0.19", 1, 0, 2, 2, 19 },
    { "ThreeOverTheEnd", "F", "0.17", 3, 0, 2, 2, 17 },
    { "GroupA", "F", "a.01", 1, 0, 3, 0, 2561 },
    { "FiveCharacters", "F", "0.100", 1, 0, 16, 2, 100 },
    { "ThreeParts", "F", "1.2.", 1, 0, 4, 4, 256 },
    { "NoPoint", "F", "5", 1, 0, 4, 4, 1285 },
    { "GroupThatIsNoNumber", "F", "x.05", 1, 0, 0, 0, 5 },
    { "GroupWithoutARow", "F", "d.05", 1, 0, 0, 0, 3333 },
    { "TheLastMonitorValue", "D", "31", 1, 0, 0, 0, 31 },
    { "PastTheMonitorValues", "D", "32", 1, 0, 2, 2, 32 },
    { "TheDescriptionsMaximum", "D", "37", 1, 0, 2, 2, 37 },
    { "WritingAControlWord", "CW", "0", 1, 1, 0, 0, 0 },
    { "ReadingAControlWord", "CW", "0", 1, 0, 7, 0, 0 },
    { "WritingAStatusWord", "SW", "0", 1, 2, 6, 0, 0 },
    { "UnknownType", "XY", "0", 1, 0, 3, 3, untouched },
    { "UnknownTypeTooLong", "XY", "00", 1, 0, 16, 3, untouched },
    { "MinusSign", "D", "-1", 1, 0, 2, 4, untouched },
};

class ModelChecks : public ::testing::TestWithParam<CheckRow> { };

} // namespace

TEST_P(ModelChecks, AnswerAsTheTableSays)
{
    const CheckRow &row = GetParam();
    const DriverModel dx4;
    const QString type = QString::fromLatin1(row.type);
    const QString text = QString::fromLatin1(row.text);
    int address = untouched;
    int ignored = 0;

    const int check = dx4.checkAddr(type, text, &ignored, 0, row.count, row.accessMode);
    const int validity = dx4.checkAddrValidity(type, text, &address, row.count, 1);

    EXPECT_EQ(check, row.check);
    EXPECT_EQ(validity, row.validity);
    EXPECT_EQ(address, row.address);
}

INSTANTIATE_TEST_SUITE_P(Addresses, ModelChecks, ::testing::ValuesIn(checkRows),
                         [](const auto &row) { return std::string(row.param.name); });

namespace {

struct CopyRow {
    const char *name;
    const char *type;
    int start;
    int count;
    int step;
    int result;
    const char *texts; ///< between blanks
};

constexpr CopyRow copyRows[] = {
    { "OverTheEndOfAGroup", "F", 16, 5, 1, 1, "0.16 0.17 0.18 1.0 1.1" },
    { "OverTheLastGroup", "F", 2572, 3, 1, 2, "c.12 c.13 c.13" },
    { "FromGroup9ToC", "F", 2314, 3, 1, 1, "9.10 9.11 c.0" },
    { "GroupByGroup", "F", 5, 3, 256, 1, "0.5 1.5 2.5" },
    { "RestartAtTheBase", "F", 10, 10, 256, 1, "0.10 1.10 2.10 3.10 4.10 5.10 6.10 1.0 2.0 3.0" },
    { "MonitorValues", "D", 36, 3, 1, 2, "36 37 37" },
    { "ControlWord", "CW", 0, 2, 1, 2, "0 0" },
    { "NegativeStart", "D", -1, 2, 1, 1, "4294967295 0" },
    { "StepMinusTwo", "D", 0, 3, -2, 1, "0 2 4" },
    { "StepMinusSeven", "D", 0, 3, -7, 1, "0 1 2" },
    { "None", "F", 0, 0, 1, 1, "" },
    { "UnknownType", "f", 0, 2, 1, 0, "" },
};

class ModelCopies : public ::testing::TestWithParam<CopyRow> { };

} // namespace

TEST_P(ModelCopies, AreTheListedTexts)
{
    const CopyRow &row = GetParam();
    const DriverModel dx4;
    QVector<QString> texts;
    QVector<int> addresses;

    const int result = dx4.multiCopy(QString::fromLatin1(row.type), row.start, row.count, row.step,
                                     &texts, &addresses);

    QString joined;
    for (const QString &text : std::as_const(texts))
        joined += (joined.isEmpty() ? QString() : QStringLiteral(" ")) + text;
    EXPECT_EQ(result, row.result);
    EXPECT_EQ(joined.toStdString(), row.texts);
    EXPECT_EQ(addresses.size(), texts.size());
}

INSTANTIATE_TEST_SUITE_P(Copies, ModelCopies, ::testing::ValuesIn(copyRows),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(ModelCatalogue, ListsStatusBeforeFrequency)
{
    const DriverModel dx4;
    QList<QString> list;

    const int result = dx4.getRegListByType(1, &list);

    EXPECT_EQ(result, 1);
    EXPECT_EQ(QStringList(list).join(QLatin1Char(',')).toStdString(), "F,D,CW,SW,FRE,FU");
}

TEST(ModelCatalogue, DescribesTheFrequency)
{
    const DriverModel dx4;
    QList<QString> list;

    const int result = dx4.getRegDiscription(QStringLiteral("FRE"), &list);

    EXPECT_EQ(result, 1);
    EXPECT_EQ(QStringList(list).join(QLatin1Char(',')).toStdString(), "d,0,0,1,2");
}
