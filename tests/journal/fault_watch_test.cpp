// SPDX-License-Identifier: MIT
// A fault is told when it comes, changes and goes.
#include "journal/fault_watch.h"
#include "journal_fixture.h"

using namespace dx4::journal;
using dx4::host::RegisterValue;

namespace {

RegisterValue valueOf(const char *type, quint16 value, int station = 1)
{
    RegisterValue shown;
    shown.station = station;
    shown.regType = QString::fromLatin1(type);
    shown.state.value = value;
    shown.state.known = true;
    return shown;
}

class FaultWatchTest : public ::testing::Test {
protected:
    Texts see(const QVector<RegisterValue> &values)
    {
        Texts texts;
        const QVector<Event> events = watch.see(values);
        for (const Event &event : events)
            texts.push_back(event.text.toStdString());
        return texts;
    }

    FaultWatch watch;
};

} // namespace

TEST_F(FaultWatchTest, AFaultIsToldOnceWhenItComesAndOnceWhenItGoes)
{
    EXPECT_EQ(see({ valueOf("FU", 0) }), Texts {});
    EXPECT_EQ(see({ valueOf("FU", 17) }), Texts { "station 1: fault 17" });
    EXPECT_EQ(see({ valueOf("FU", 17) }), Texts {});
    EXPECT_EQ(see({ valueOf("FU", 3) }), Texts { "station 1: fault 3" });
    EXPECT_EQ(see({ valueOf("FU", 0) }), Texts { "station 1: no fault any more" });
}

TEST_F(FaultWatchTest, AnEventHasTheCodesAndTheRegister)
{
    watch.see({ valueOf("FU", 17, 4) });

    const Event event = watch.see({ valueOf("FU", 3, 4) }).constFirst();

    EXPECT_EQ(event.kind, EventKind::Fault);
    EXPECT_EQ(event.station, 4);
    EXPECT_EQ(event.regType, QStringLiteral("FU"));
    EXPECT_EQ(event.address, 0);
    EXPECT_EQ(event.code, 3);
    EXPECT_EQ(event.before, 17);
}

TEST_F(FaultWatchTest, AFaultThatIsThereAtFirstIsTold)
{
    EXPECT_EQ(see({ valueOf("FU", 17) }), Texts { "station 1: fault 17" });
}

TEST_F(FaultWatchTest, StationsAreKeptApart)
{
    see({ valueOf("FU", 17, 1) });

    EXPECT_EQ(see({ valueOf("FU", 17, 2), valueOf("SW", 1, 1) }), Texts { "station 2: fault 17" });
}

TEST_F(FaultWatchTest, WhatIsNotCertainIsNoFault)
{
    RegisterValue unknown = valueOf("FU", 17);
    unknown.state.known = false;
    RegisterValue stale = valueOf("FU", 17);
    stale.state.stale = true;
    RegisterValue failed = valueOf("FU", 17);
    failed.state.failed = true;

    EXPECT_EQ(see({ unknown, stale, failed, valueOf("D", 17) }), Texts {});
}

TEST_F(FaultWatchTest, WordsAndTheStatusWordAreToldAlong)
{
    watch.setWords({ { { 1, QStringLiteral("running") }, { 3, QStringLiteral("fault") } },
                     { { 17, QStringLiteral("door open") } } });

    EXPECT_EQ(
        see({ valueOf("FU", 17), valueOf("SW", 0x800A) }),
        Texts { "station 1: fault 17, door open; status word 0x800A: running, fault, bit 15" });
    EXPECT_EQ(see({ valueOf("FU", 18), valueOf("SW", 0) }),
              Texts { "station 1: fault 18; status word 0x0000: no bit set" });
    EXPECT_EQ(see({ valueOf("FU", 0), valueOf("SW", 1) }),
              Texts { "station 1: no fault any more; status word 0x0001: bit 0" });
}
