// SPDX-License-Identifier: MIT
// The register types and their descriptions as the editor lists them.
#include "driver_fixture.h"

#include <ostream>

namespace {

std::string joined(const QList<QString> &list)
{
    std::string text;
    for (const QString &entry : list)
        text += entry.toStdString() + ';';
    return text;
}

class RegisterCatalog : public DriverFixture { };

TEST_F(RegisterCatalog, ListsTheSixTypesWithSwBeforeFre)
{
    QList<QString> list;

    EXPECT_EQ(dx4.getRegListByType(1, &list), 1);

    EXPECT_EQ(joined(list), "F;D;CW;SW;FRE;FU;");
}

TEST_F(RegisterCatalog, ListKeepsWhatItHeldAndGainsSixMore)
{
    QList<QString> list { QStringLiteral("old"), QStringLiteral("F") };

    EXPECT_EQ(dx4.getRegListByType(1, &list), 1);

    EXPECT_EQ(joined(list), "old;F;F;D;CW;SW;FRE;FU;");
}

TEST_F(RegisterCatalog, ListOfAnyOtherKindIsLeftUntouched)
{
    QList<QString> list { QStringLiteral("old") };

    EXPECT_EQ(dx4.getRegListByType(0, &list), 0);
    EXPECT_EQ(dx4.getRegListByType(2, &list), 0);
    EXPECT_EQ(dx4.getRegListByType(-1, &list), 0);
    EXPECT_EQ(dx4.getRegListByType(257, &list), 0);

    EXPECT_EQ(joined(list), "old;");
}

TEST_F(RegisterCatalog, DescriptionKeepsWhatTheListHeld)
{
    QList<QString> list { QStringLiteral("old") };

    EXPECT_EQ(dx4.getRegDiscription(QStringLiteral("D"), &list), 1);

    EXPECT_EQ(joined(list), "old;dd;0;37;1;0;");
}

TEST_F(RegisterCatalog, AnswersBeforeAnyStart)
{
    QList<QString> list;

    EXPECT_EQ(dx4.getRegDiscription(QStringLiteral("CW"), &list), 1);

    EXPECT_EQ(joined(list), "d;0;0;1;2;");
    EXPECT_EQ(state.spare3, 0);
}

struct DescriptionRow {
    const char *name;
    const char *type;
    int answer;
    const char *texts;
};

// Without it a row is named by the bytes of its pointers, anew in every run.
void PrintTo(const DescriptionRow &row, std::ostream *out)
{
    *out << row.name;
}

class RegisterDescription : public DriverFixture,
                            public ::testing::WithParamInterface<DescriptionRow> { };

TEST_P(RegisterDescription, IsAppendedInColumnOrder)
{
    const DescriptionRow &row = GetParam();
    QList<QString> list;

    EXPECT_EQ(dx4.getRegDiscription(QString::fromLatin1(row.type), &list), row.answer);

    EXPECT_EQ(joined(list), row.texts);
}

std::string rowName(const ::testing::TestParamInfo<DescriptionRow> &info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Types, RegisterDescription,
    ::testing::Values(
        DescriptionRow { "FShowsC28AlthoughGroupCEndsAt13", "F", 1, "h.dd;0.0;c.28;1;1;" },
        DescriptionRow { "DShows37AlthoughTheCheckStopsAt32", "D", 1, "dd;0;37;1;0;" },
        DescriptionRow { "CwIsWriteOnly", "CW", 1, "d;0;0;1;2;" },
        DescriptionRow { "FreIsWriteOnly", "FRE", 1, "d;0;0;1;2;" },
        DescriptionRow { "SwIsReadOnly", "SW", 1, "d;0;0;1;0;" },
        DescriptionRow { "FuIsReadOnly", "FU", 1, "d;0;0;1;0;" },
        DescriptionRow { "LowerCaseIsUnknown", "f", 0, "" },
        DescriptionRow { "LowerCaseFreIsUnknown", "fre", 0, "" },
        DescriptionRow { "EmptyNameIsUnknown", "", 0, "" },
        DescriptionRow { "BlankBehindTheNameIsUnknown", "F ", 0, "" },
        DescriptionRow { "LongerNameIsUnknown", "FX", 0, "" },
        DescriptionRow { "PrefixOfANameIsUnknown", "FR", 0, "" }),
    rowName);

} // namespace
