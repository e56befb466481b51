// SPDX-License-Identifier: MIT
// A right reply altered by any one or two bits, cut or made longer is refused and changes nothing
// but the count of failures.
#include "compare.h"
#include "link_under_test.h"
#include "snapshot.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// How a request came about and what answers it; the replies are written out with their CRC.
struct Golden {
    const char *name;
    const char *reply;
    void (*queue)(LinkUnderTest &link);
};

void queueRecipeRead(LinkUnderTest &link)
{
    _RCP_VAR_PRO recipe;
    recipe.linkId = 1;
    recipe.station = 1;
    recipe.regType = QStringLiteral("F");
    recipe.count = 2;
    intf_setRcpAddress({ recipe });
    driver.rcpSendVars = driver.rcpVars;
    driver.mergeIndexList = { 0 };
    link.block[60116] = 1;
}

const Golden goldens[] = {
    { "CyclicReadOfTwoRegisters", "01 03 04 12 34 56 78",
      [](LinkUnderTest &link) { link.poll(QStringLiteral("F"), 0, 2); } },
    { "CyclicReadOfOneRegister", "01 03 02 00 00",
      [](LinkUnderTest &link) { link.poll(QStringLiteral("SW"), 0, 1); } },
    { "ConditionReadOfEightRegisters", "01 03 10 00 01 00 02 00 03 00 04 FF FF FF FE 80 00 7F FF",
      [](LinkUnderTest &link) { link.readOnce(QStringLiteral("D"), 4, 8); } },
    { "WriteOfOneRegister", "01 06 10 02 13 88",
      [](LinkUnderTest &link) { link.write(QStringLiteral("FRE"), 0, { 5000 }); } },
    { "WriteOfThreeRegisters", "01 10 F3 05 00 03",
      [](LinkUnderTest &link) {
          link.write(QStringLiteral("F"), 0x305, { 1, 2, 3 });
      } },
    { "RecipeReadOfTwoRegisters", "01 03 04 DE AD BE EF", &queueRecipeRead },
};

int callbacks = 0;

// Everything a refused reply must leave alone, in storage of its own.
class KeptState {
public:
    explicit KeptState(const LinkUnderTest &link)
        : m_lists { model::separate(driver.readList),      model::separate(driver.writeList),
                    model::separate(driver.conditionList), model::separate(driver.dataAreas),
                    model::separate(driver.rcpVars),       model::separate(driver.sendFrames) }
        , m_numbers(numbers())
        , m_curVar(driver.curVar)
        , m_conditionVar(driver.conditionVar)
        , m_block(link.block)
        , m_recipe(link.recipe)
        , m_callbacks(callbacks)
    {
    }

    bool isUnchanged(const LinkUnderTest &link) const
    {
        return model::sameList(driver.readList, m_lists.readList)
            && model::sameList(driver.writeList, m_lists.writeList)
            && model::sameList(driver.conditionList, m_lists.conditionList)
            && model::sameList(driver.dataAreas, m_lists.dataAreas)
            && model::sameList(driver.rcpVars, m_lists.rcpVars)
            && model::sameList(driver.sendFrames, m_lists.sendFrames) && numbers() == m_numbers
            && model::same(driver.curVar, m_curVar)
            && model::same(driver.conditionVar, m_conditionVar)
            && link.block[60115] == m_block[60115] && link.block[60116] == m_block[60116]
            && link.recipe == m_recipe && callbacks == m_callbacks;
    }

private:
    static std::vector<int> numbers()
    {
        return { driver.linkId,    driver.writesLocalOnly, driver.property2,      driver.retryLimit,
                 driver.blockSize, driver.hostParam,       driver.phase,          driver.tryCount,
                 driver.spare1,    driver.bitBlockSize,    driver.writeBlockSize, driver.lastFailed,
                 driver.spare2,    driver.spare3,          driver.rcpIndex };
    }

    model::Lists m_lists;
    std::vector<int> m_numbers;
    VARIABLE m_curVar;
    VARIABLE m_conditionVar;
    std::vector<unsigned char> m_block;
    std::vector<unsigned short> m_recipe;
    int m_callbacks;
};

constexpr int retryLimit = 1000000; // no reply of these tests reaches it

class Refusal : public ::testing::TestWithParam<Golden> {
protected:
    Refusal()
    {
        intf_setAddrValueChangeCallBack([](int, int, QString &, int) { ++callbacks; });
        GetParam().queue(link);
        FRAME_PRO frame;
        EXPECT_EQ(intf_getSendFrame(frame), 1);
        golden = withCrc(QByteArray::fromHex(GetParam().reply));
        EXPECT_EQ(golden.size(), frame.replyLength);
        callbacks = 0;
        kept = std::make_unique<KeptState>(link);
    }

    // Hands in an altered reply; true when it was refused without a trace.
    bool isRefused(QByteArray altered)
    {
        QString errorText;
        const int result = intf_dealRcvFrame(altered, errorText);
        ++refused;
        return result == 8 && driver.failCount == refused && kept->isUnchanged(link);
    }

    QByteArray flipped(int bit, int otherBit = -1) const
    {
        QByteArray altered = golden;
        for (int flip : { bit, otherBit }) {
            if (flip >= 0)
                altered[flip / 8] = static_cast<char>(altered.at(flip / 8) ^ (1 << flip % 8));
        }
        return altered;
    }

    int bits() const { return 8 * static_cast<int>(golden.size()); }

    LinkUnderTest link { 16, retryLimit };
    QByteArray golden;
    std::unique_ptr<KeptState> kept;
    int refused = 0;
};

} // namespace

TEST_P(Refusal, TheRightReplyIsAccepted)
{
    QString errorText;

    const int result = intf_dealRcvFrame(golden, errorText);

    EXPECT_EQ(result, 1);
}

TEST_P(Refusal, EverySingleBitFlipIsRefused)
{
    for (int bit = 0; bit < bits(); ++bit)
        ASSERT_TRUE(isRefused(flipped(bit))) << "bit " << bit;
}

TEST_P(Refusal, EveryDoubleBitFlipIsRefused)
{
    for (int bit = 0; bit < bits(); ++bit) {
        for (int other = bit + 1; other < bits(); ++other)
            ASSERT_TRUE(isRefused(flipped(bit, other))) << "bits " << bit << " and " << other;
    }
}

TEST_P(Refusal, EveryTruncationIsRefused)
{
    const int size = static_cast<int>(golden.size());
    for (int length = 0; length < size; ++length) {
        EXPECT_TRUE(isRefused(golden.left(length))) << length << " bytes from the start";
        EXPECT_TRUE(isRefused(golden.right(length))) << length << " bytes from the end";
        if (length >= 2) {
            EXPECT_TRUE(isRefused(withCrc(golden.left(length - 2)))) << length << " with a CRC";
        }
    }
}

TEST_P(Refusal, EveryByteBehindOrBeforeIsRefused)
{
    for (int byte = 0; byte < 256; ++byte) {
        const char extra = static_cast<char>(byte);
        EXPECT_TRUE(isRefused(golden + extra)) << byte << " behind";
        EXPECT_TRUE(isRefused(extra + golden)) << byte << " before";
        EXPECT_TRUE(isRefused(withCrc(golden + extra))) << byte << " behind, with a CRC";
    }
}

TEST_P(Refusal, LongExtensionsAreRefused)
{
    for (int extra : { 2, 3, 8, 255, 256, 4096, 65536 }) {
        EXPECT_TRUE(isRefused(golden + QByteArray(extra, '\0'))) << extra << " zero bytes";
        EXPECT_TRUE(isRefused(golden + QByteArray(extra, '\xFF'))) << extra << " bytes of 0xFF";
        EXPECT_TRUE(isRefused(golden.repeated(extra))) << extra << " times";
    }
}

TEST_P(Refusal, AnyExceptionCodeIsRefused)
{
    for (int code = 0; code < 256; ++code) {
        QByteArray exception = golden.left(2) + static_cast<char>(code);
        exception[1] = static_cast<char>(exception.at(1) | 0x80);
        EXPECT_TRUE(isRefused(withCrc(exception))) << "exception " << code;
    }
}

INSTANTIATE_TEST_SUITE_P(Replies, Refusal, ::testing::ValuesIn(goldens),
                         [](const auto &instance) { return instance.param.name; });
