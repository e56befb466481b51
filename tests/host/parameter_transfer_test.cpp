// SPDX-License-Identifier: MIT
// Parameter sets read from a station and restored, over link, cycle and the line in memory.
#include "host/exchange/cycle_access.h"
#include "host/exchange/guarded_exchange.h"
#include "host/line/memory_line.h"
#include "host/parameters/parameter_transfer.h"

#include "host_bytes.h"

#include <QSet>

#include <gtest/gtest.h>

#include <optional>

using namespace dx4::host;

namespace {

int word(const QByteArray &frame, int offset)
{
    return static_cast<unsigned char>(frame.at(offset)) * 256
        + static_cast<unsigned char>(frame.at(offset + 1));
}

QByteArray sealed(const std::vector<unsigned char> &payload)
{
    QByteArray frame;
    for (unsigned char byte : withCrc(payload))
        frame.append(static_cast<char>(byte));
    return frame;
}

/// Parameters behind the line, by Modbus register; each starts as its own index.
class FakeDrive {
public:
    QByteArray answer(const QByteArray &request)
    {
        const int first = word(request, 2);
        const bool isRead = request.at(1) == 3;
        const int count = isRead ? word(request, 4) : 1;
        if (silentAfter-- <= 0)
            return {};
        if (instead)
            return *instead;
        for (int i = 0; i < count; ++i) {
            if (missing.contains(first + i) || (!isRead && locked.contains(first + i)))
                return sealed({ 1, static_cast<unsigned char>(request.at(1) | 0x80), 2 });
        }
        return isRead ? registers(first, count) : write(request);
    }

    int value(int modbusRegister) const
    {
        return values.value(modbusRegister, modbusRegister & 0xFF);
    }

    QMap<int, int> values;
    QSet<int> missing;
    QSet<int> locked;
    QSet<int> stubborn; ///< echoed and not kept
    QMap<int, int> coupled; ///< writing the first sets the second to its index
    std::optional<QByteArray> instead; ///< sent in place of every reply
    QVector<int> written; ///< registers in the order they were written
    int silentAfter = 1'000'000; ///< requests answered before the drive falls silent

private:
    QByteArray registers(int first, int count) const
    {
        std::vector<unsigned char> payload = { 1, 3, static_cast<unsigned char>(2 * count) };
        for (int i = 0; i < count; ++i) {
            payload.push_back(static_cast<unsigned char>(value(first + i) >> 8));
            payload.push_back(static_cast<unsigned char>(value(first + i) & 0xFF));
        }
        return sealed(payload);
    }

    QByteArray write(const QByteArray &request)
    {
        const bool isMany = request.at(1) == 16;
        written.append(word(request, 2));
        if (!stubborn.contains(word(request, 2)))
            values.insert(word(request, 2), word(request, isMany ? 7 : 4));
        if (coupled.contains(word(request, 2)))
            values.remove(coupled.value(word(request, 2)));
        return isMany ? sealed({ 1, 16, static_cast<unsigned char>(request.at(2)),
                                 static_cast<unsigned char>(request.at(3)), 0, 1 })
                      : request;
    }
};

/// Lets so many accesses through, as a program does that is then asked to end.
class EndedAccess : public RegisterAccess {
public:
    EndedAccess(RegisterAccess &access, int accesses)
        : m_access(access)
        , m_left(accesses)
    {
    }

    int blockSize() const override { return m_access.blockSize(); }
    AccessResult read(int station, const QString &regType, int address, int count) override
    {
        return m_left-- > 0 ? m_access.read(station, regType, address, count) : ended();
    }
    AccessResult write(int station, const QString &regType, int address, quint16 value) override
    {
        return m_left-- > 0 ? m_access.write(station, regType, address, value) : ended();
    }

private:
    static AccessResult ended()
    {
        return { AccessResult::Kind::NotBegun, QStringLiteral("interrupted"), {} };
    }

    RegisterAccess &m_access;
    int m_left;
};

/// Parameters without a line between, each of them 0; takes so many registers in one read.
class TableAccess : public RegisterAccess {
public:
    explicit TableAccess(int mostRegisters)
        : m_mostRegisters(mostRegisters)
    {
    }

    int blockSize() const override { return m_mostRegisters; }
    AccessResult read(int station, const QString &, int address, int count) override
    {
        stations.insert(station);
        counts.append(count);
        for (int i = 0; i < count; ++i) {
            if (missing.contains(address + i))
                return { AccessResult::Kind::Refused, QStringLiteral("not there"), {} };
        }
        QVector<quint16> found;
        for (int i = 0; i < count; ++i)
            found.append(values.value(address + i));
        return { AccessResult::Kind::Done, {}, found };
    }
    AccessResult write(int station, const QString &, int address, quint16 value) override
    {
        stations.insert(station);
        values.insert(address, value);
        return {};
    }

    QMap<int, quint16> values;
    QSet<int> missing;
    QSet<int> stations; ///< that were asked or written to
    QVector<int> counts; ///< registers of each read, in their order

private:
    int m_mostRegisters;
};

constexpr int readsOfAll = 19; // requests of up to 16 registers for all groups

/// The numbers of a report in one line.
std::string numbers(const RestoreReport &report)
{
    return QStringLiteral("%1 compared, %2 written, %3 verified, %4 refused, %5 differ, %6 unseen")
        .arg(report.compared)
        .arg(report.written)
        .arg(report.verified)
        .arg(report.refused.size())
        .arg(report.remaining.size())
        .arg(report.unseen)
        .toStdString();
}

class ParameterTransfer : public ::testing::Test {
protected:
    FakeDrive drive;
    Link link { Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy),
                LinkSettings() };
    MemoryLine line { [this](const QByteArray &request) {
        return MemoryLine::Answer { drive.answer(request) };
    } };
    LineExchange exchange { line };
    Cycle cycle { link, exchange };
    CycleAccess access { link, cycle };
    ParameterSet set;
    QString error;
};

} // namespace

TEST_F(ParameterTransfer, AllParametersAreRead)
{
    const bool read = readParameters(access, set, &error);

    EXPECT_TRUE(read) << error.toStdString();
    EXPECT_TRUE(isComplete(set));
    EXPECT_EQ(set.values.size(), 203);
    EXPECT_EQ(set.values.value(0x0A0D), 13);
    EXPECT_EQ(set.values.value(0x041C), 28);
}

TEST_F(ParameterTransfer, PollingGoesOnMeanwhile)
{
    link.poll({ wanted(1, QStringLiteral("D"), 7) });

    readParameters(access, set, &error);

    EXPECT_EQ(link.registerState(1, QStringLiteral("D"), 7).value, 7);
}

TEST_F(ParameterTransfer, ARegisterThatTheStationLacksIsNoted)
{
    drive.missing = { 0xF802, 0xFC0D };

    const bool read = readParameters(access, set, &error);

    EXPECT_TRUE(read) << error.toStdString();
    EXPECT_EQ(set.refused, (QVector<int> { 0x0802, 0x0A0D }));
    EXPECT_EQ(set.values.size(), 201);
    EXPECT_TRUE(isComplete(set));
}

TEST_F(ParameterTransfer, AReadThatBrokeOffGoesOnWhereItWas)
{
    drive.silentAfter = 4;
    const bool first = readParameters(access, set, &error);
    const auto kept = set.values.size();
    drive.silentAfter = 1'000'000;
    const auto sentBefore = line.sent().size();

    const bool second = readParameters(access, set, nullptr);

    EXPECT_FALSE(first);
    EXPECT_EQ(error.toStdString(), "station 1, F 2.0 (0xF200): no reply");
    EXPECT_EQ(kept, 38);
    EXPECT_TRUE(second);
    EXPECT_EQ(set.values.size(), 203);
    EXPECT_EQ(line.sent().at(sentBefore), frameOf("01 03 F2 00 00 10"));
}

TEST_F(ParameterTransfer, AClosedLineBreaksTheReadOff)
{
    line.unplug();

    const bool read = readParameters(access, set, &error);

    EXPECT_FALSE(read);
    EXPECT_EQ(error.toStdString(), "station 1, F 0.0 (0xF000): the line is down");
}

TEST_F(ParameterTransfer, ProgressCountsRegisters)
{
    QVector<int> done;

    readParameters(access, set, &error, [&done](int settled, int) { done.append(settled); });

    EXPECT_EQ(done.mid(0, 3), (QVector<int> { 16, 19, 35 }));
    EXPECT_EQ(done.constLast(), 203);
}

TEST_F(ParameterTransfer, ProgressCountsRefusedRegistersAsWell)
{
    drive.missing = { 0xF802, 0xFC0D };
    QVector<int> done;
    QSet<int> totals;

    readParameters(access, set, &error, [&](int settled, int total) {
        done.append(settled);
        totals.insert(total);
    });

    EXPECT_EQ(done.constLast(), 203);
    EXPECT_EQ(totals, QSet<int> { 203 });
}

TEST_F(ParameterTransfer, NoReadIsLongerThanTheAccessTakes)
{
    for (const auto &[most, reads] : { std::pair(0, 203), std::pair(1, 203), std::pair(2, 105) }) {
        TableAccess table(most);
        ParameterSet whole;

        EXPECT_TRUE(readParameters(table, whole, &error));

        EXPECT_EQ(table.counts.size(), reads) << most;
        EXPECT_EQ(whole.values.size(), 203);
    }
}

TEST_F(ParameterTransfer, ARefusedPairIsReadOneByOne)
{
    TableAccess table(2);
    table.missing = { 0x0001 };

    const bool read = readParameters(table, set, &error);

    EXPECT_TRUE(read);
    EXPECT_EQ(set.refused, QVector<int> { 0x0001 });
    EXPECT_EQ(set.values.size(), 202);
}

TEST_F(ParameterTransfer, AReadThatBreaksOffNeedNotSayWhy)
{
    EndedAccess ended(access, 1);

    EXPECT_FALSE(readParameters(ended, set, nullptr));
    EXPECT_EQ(set.values.size(), 16);
}

TEST_F(ParameterTransfer, ARestoreGoesToTheStationThatIsNamed)
{
    TableAccess table(16);
    set.station = 3;
    set.values = { { 0x0802, 5 } };

    const RestoreReport report = restoreParameters(table, 7, set);

    EXPECT_TRUE(report.isRestored());
    EXPECT_EQ(table.values, (QMap<int, quint16> { { 0x0802, 5 } }));
    EXPECT_EQ(table.stations, QSet<int> { 7 });
}

TEST_F(ParameterTransfer, OnlyWhatDiffersIsWritten)
{
    readParameters(access, set, &error);
    drive.values = { { 0xF105, 99 }, { 0xFC0D, 98 } };

    const RestoreReport report = restoreParameters(access, 1, set);

    EXPECT_TRUE(report.isRestored());
    EXPECT_EQ(numbers(report),
              "203 compared, 2 written, 203 verified, 0 refused, 0 differ, 0 unseen");
    EXPECT_EQ(drive.written, (QVector<int> { 0xF105, 0xFC0D }));
    EXPECT_EQ(drive.value(0xF105), 5);
    EXPECT_EQ(drive.value(0xFC0D), 13);
}

TEST_F(ParameterTransfer, AnEqualStationIsNotWrittenAtAll)
{
    readParameters(access, set, &error);
    const auto sentBefore = line.sent().size();

    const RestoreReport report = restoreParameters(access, 1, set);

    EXPECT_TRUE(report.isRestored());
    EXPECT_TRUE(drive.written.isEmpty());
    EXPECT_EQ(line.sent().size() - sentBefore, readsOfAll);
}

TEST_F(ParameterTransfer, ARefusedWriteIsToldWithItsExceptionAlone)
{
    readParameters(access, set, &error);
    drive.values = { { 0xF105, 99 }, { 0xF106, 97 } };
    drive.locked = { 0xF105 };

    const RestoreReport report = restoreParameters(access, 1, set);

    EXPECT_FALSE(report.isRestored());
    EXPECT_EQ(report.written, 1);
    ASSERT_EQ(report.refused.size(), 1);
    EXPECT_EQ(report.refused.at(0).toStdString(),
              "station 1, F 1.5 (0xF105): refused with exception 2, register not there");
    EXPECT_TRUE(report.remaining.isEmpty());
}

TEST_F(ParameterTransfer, ARegisterThatTheStationLacksIsToldAsRefused)
{
    readParameters(access, set, &error);
    drive.missing = { 0xF105 };

    const RestoreReport report = restoreParameters(access, 1, set);

    EXPECT_FALSE(report.isRestored());
    EXPECT_EQ(numbers(report),
              "202 compared, 0 written, 202 verified, 1 refused, 0 differ, 0 unseen");
    ASSERT_EQ(report.refused.size(), 1);
    EXPECT_EQ(report.refused.at(0).toStdString(),
              "station 1, F 1.5 (0xF105): refused with exception 2, register not there");
    EXPECT_TRUE(report.remaining.isEmpty());
    EXPECT_TRUE(drive.written.isEmpty());
}

TEST_F(ParameterTransfer, AValueThatTheStationEchoesAndDoesNotKeepStillDiffers)
{
    readParameters(access, set, &error);
    drive.values = { { 0xF105, 99 } };
    drive.stubborn = { 0xF105 };

    const RestoreReport report = restoreParameters(access, 1, set);

    EXPECT_FALSE(report.isRestored());
    EXPECT_TRUE(report.refused.isEmpty());
    ASSERT_EQ(report.remaining.size(), 1);
    EXPECT_EQ(report.remaining.at(0).text().toStdString(), "F 1.5 (0xF105): 5 | 99");
}

TEST_F(ParameterTransfer, ARefusedValueThatAnotherWriteBringsAboutIsRestored)
{
    readParameters(access, set, &error);
    drive.values = { { 0xF105, 99 }, { 0xF106, 97 } };
    drive.locked = { 0xF105 };
    drive.coupled = { { 0xF106, 0xF105 } };

    const RestoreReport report = restoreParameters(access, 1, set);

    EXPECT_TRUE(report.isRestored());
    EXPECT_EQ(report.written, 1);
}

TEST_F(ParameterTransfer, TheCauseOfAFailedReadIsNamed)
{
    const std::pair<const char *, const char *> rows[] = {
        { "", "no reply" },
        { "01 03 02", "the reply is cut short" },
        { "01 03 02 00 05 00 00", "the reply has a wrong CRC" },
        { "framed 02 03 02 00 05", "another station replied" },
        { "framed 01 83 04", "refused with exception 4, device failed" },
        { "framed 01 83 0B", "refused with exception 11, a code of the device's own" },
    };
    GuardedExchange guard(line);
    Cycle guarded(link, guard);
    CycleAccess named(link, guarded, [&guard] { return guard.report().verdict; });
    for (const auto &[reply, cause] : rows) {
        SCOPED_TRACE(cause);
        const std::string text = reply;
        const bool isFramed = text.rfind("framed ", 0) == 0;
        drive.instead = isFramed ? frameOf(text.substr(7)) : bytesOf(text);

        const AccessResult result = named.read(1, QStringLiteral("F"), 0, 1);

        EXPECT_EQ(result.reason.toStdString(), std::string("station 1, F 0.0 (0xF000): ") + cause);
        EXPECT_EQ(result.kind,
                  std::string(cause).rfind("refused", 0) == 0 ? AccessResult::Kind::Refused
                                                              : AccessResult::Kind::NoAnswer);
    }
}

TEST_F(ParameterTransfer, ARestoreThatEndsAsItComparesTellsWhatItSaw)
{
    readParameters(access, set, &error);
    drive.values = { { 0xF001, 99 } };
    EndedAccess ended(access, 1);

    const RestoreReport report = restoreParameters(ended, 1, set);

    EXPECT_EQ(numbers(report),
              "16 compared, 0 written, 15 verified, 0 refused, 1 differ, 187 unseen");
    EXPECT_EQ(report.interrupted.toStdString(), "interrupted");
    EXPECT_FALSE(report.isRestored());
}

TEST_F(ParameterTransfer, ARestoreThatEndsBeforeItsFirstWriteHasVerifiedTheRest)
{
    readParameters(access, set, &error);
    drive.values = { { 0xF105, 99 }, { 0xF106, 97 } };
    EndedAccess ended(access, readsOfAll);

    const RestoreReport report = restoreParameters(ended, 1, set);

    EXPECT_EQ(numbers(report),
              "203 compared, 0 written, 201 verified, 0 refused, 2 differ, 0 unseen");
}

TEST_F(ParameterTransfer, WhatWasWrittenDoesNotDifferWhereTheRestoreEndsBehindIt)
{
    readParameters(access, set, &error);
    drive.values = { { 0xF105, 99 }, { 0xF106, 97 } };
    EndedAccess ended(access, readsOfAll + 1);

    const RestoreReport report = restoreParameters(ended, 1, set);

    EXPECT_EQ(numbers(report),
              "203 compared, 1 written, 0 verified, 0 refused, 1 differ, 202 unseen");
    EXPECT_EQ(report.remaining.at(0).text().toStdString(), "F 1.6 (0xF106): 6 | 97");
}

TEST_F(ParameterTransfer, ARestoreThatEndsAsItVerifiesTellsWhatItSawAgain)
{
    readParameters(access, set, &error);
    drive.values = { { 0xF105, 99 }, { 0xF106, 97 }, { 0xFC0D, 96 } };
    drive.stubborn = { 0xF106 };
    EndedAccess ended(access, readsOfAll + 3 + 3); // groups 0 and the first block of group 1

    const RestoreReport report = restoreParameters(ended, 1, set);

    EXPECT_EQ(numbers(report),
              "203 compared, 3 written, 34 verified, 0 refused, 1 differ, 168 unseen");
    EXPECT_EQ(report.remaining.at(0).text().toStdString(), "F 1.6 (0xF106): 6 | 97");
}

TEST_F(ParameterTransfer, AWriteWithoutAnAnswerMayHaveBeenCarriedOut)
{
    readParameters(access, set, &error);
    drive.values = { { 0xF105, 99 }, { 0xF106, 97 }, { 0xF107, 96 } };
    drive.silentAfter = readsOfAll + 1;

    const RestoreReport report = restoreParameters(access, 1, set);

    EXPECT_EQ(numbers(report),
              "203 compared, 1 written, 0 verified, 0 refused, 1 differ, 202 unseen");
    EXPECT_EQ(report.remaining.at(0).text().toStdString(), "F 1.7 (0xF107): 7 | 96");
}

TEST_F(ParameterTransfer, ARestoreThatBrokeOffIsTakenUpByTheNext)
{
    readParameters(access, set, &error);
    drive.values = { { 0xF105, 99 }, { 0xF106, 97 } };
    drive.silentAfter = 20; // all reads of the comparison and the first write
    const RestoreReport first = restoreParameters(access, 1, set);
    drive.silentAfter = 1'000'000;

    const RestoreReport second = restoreParameters(access, 1, set);

    EXPECT_EQ(first.written, 1);
    EXPECT_EQ(first.interrupted.toStdString(), "station 1, F 1.6 (0xF106): no reply");
    EXPECT_FALSE(first.isRestored());
    EXPECT_TRUE(second.isRestored());
    EXPECT_EQ(drive.written, (QVector<int> { 0xF105, 0xF106 }));
}

TEST_F(ParameterTransfer, TheRecipeBytesStayDown)
{
    readParameters(access, set, &error);
    drive.values = { { 0xF105, 99 } };

    restoreParameters(access, 1, set);

    EXPECT_EQ(link.api().state->hostBlock[60115], 0);
    EXPECT_EQ(link.api().state->hostBlock[60116], 0);
}
