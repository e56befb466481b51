// SPDX-License-Identifier: MIT
// A fault of the past that a test makes up.
#include "past_fixture.h"

#include "panel_fixture.h"

#include <chrono>

using namespace dx4::panel;
using dx4::host::RegisterValue;
using dx4::journal::Event;

namespace {

int placeOf(const PastRecord &record, int station, const char *type, int address)
{
    for (int place = 0; place < record.registers.size(); ++place) {
        const PastRegister &of = record.registers.at(place);
        if (of.station == station && of.regType == QLatin1String(type) && of.address == address)
            return place;
    }
    return -1;
}

void change(PastRecord &record, int ms, int station, const char *type, int address, quint16 value)
{
    PastChange made;
    made.time = faultNoon + ms;
    made.place = placeOf(record, station, type, address);
    made.state.known = true;
    made.state.value = value;
    record.changes.append(made);
}

Event parameterWrite()
{
    Event event;
    event.kind = dx4::journal::EventKind::Parameter;
    event.time = faultNoon - 600'000;
    event.station = 3;
    event.regType = QStringLiteral("F");
    event.address = 5;
    event.before = 7;
    event.after = 9;
    event.text = QStringLiteral("station 3, F 0.5 (0xF005): 7 to 9, confirmed");
    return event;
}

} // namespace

PastRecord pastFault()
{
    MadeUpLine made;
    made.readStanding(1);
    made.readStanding(2);
    made.readRunning(3);
    PastRecord record;
    record.faultAt = faultNoon;
    record.station = 3;
    record.code = 2;
    record.from = faultNoon - 30'000;
    record.to = faultNoon + 5'000;
    for (const auto &station : made.config.stations)
        record.drives.insert(station.address, station.name);
    record.states = made.config.states;
    record.faults = made.config.faults;
    for (const RegisterValue &value : made.next.registers)
        record.registers.append(
            { value.station, value.regType, value.address, value.name, value.scaling });
    record.line.append(PastLine { record.from, QString() });
    for (const RegisterValue &value : made.next.registers)
        change(record, -30'000, value.station, value.regType.toLatin1(), value.address,
               value.state.value);
    change(record, -1500, 3, "D", 4, 748);
    change(record, -500, 3, "D", 4, 801);
    change(record, 0, 3, "FU", 0, 2);
    change(record, 100, 3, "SW", 0, 8);
    change(record, 400, 3, "D", 0, 3120);
    change(record, 2000, 3, "D", 0, 0);
    record.frames = QVector<PastFrame> {
        { faultNoon - 120, true, QByteArray::fromHex("030320000001840c") },
        { faultNoon - 105, false, QByteArray::fromHex("0303020002418c") },
    };
    record.parameters = QVector<Event> { parameterWrite() };
    return record;
}
