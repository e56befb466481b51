// SPDX-License-Identifier: MIT
// Looks at the host after every step and writes down what must not happen.
#include "witness.h"

#include <algorithm>

namespace dx4::faults {

using host::Cycle;
using host::RegisterState;
using host::ValueChange;

namespace {

constexpr unsigned char readFunction = 3;

QString typeOf(const Register &reg)
{
    return QString::fromLatin1(reg.type.c_str());
}

} // namespace

Witness::Witness(host::Link &link, Plant &plant)
    : m_link(link)
    , m_plant(plant)
    , m_written(plant.registers().size(), -1)
    , m_shown(plant.registers().size(), 0)
    , m_known(plant.registers().size(), false)
{
    m_link.onChange([this](const ValueChange &change) { hear(change); });
}

void Witness::write(int station, const char *type, int address, int count)
{
    const std::size_t first = m_plant.find(station, type, address);
    std::vector<int> values;
    ++m_writeNumber;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        values.push_back(Plant::valueToWrite(first + i, m_writeNumber));
    send(first, values);
}

void Witness::writeValue(int station, const char *type, int address, int value)
{
    send(m_plant.find(station, type, address), { value });
}

void Witness::send(std::size_t first, const std::vector<int> &values)
{
    const Register &reg = m_plant.registers()[first];
    QVector<quint16> words;
    for (std::size_t i = 0; i < values.size(); ++i) {
        m_written[first + i] = values[i];
        words.append(static_cast<quint16>(values[i]));
    }
    m_writes.push_back({ first, values });
    m_link.write(reg.station, typeOf(reg), reg.address, words);
    lookAtValues();
}

void Witness::look(Cycle::Step step, const FRAME_PRO &request)
{
    m_plant.remember();
    const bool isWrite = request.frame[1] != readFunction;
    if (isWrite && (step == Cycle::Step::Served || step == Cycle::Step::GivenUp))
        settle(step, request);
    lookAtValues();
}

void Witness::settle(Cycle::Step step, const FRAME_PRO &request)
{
    const std::size_t first =
        m_plant.find(request.var.station, request.var.regType.toStdString(), request.var.address);
    for (Write &write : m_writes) {
        if (write.first == first && write.outcome == Outcome::Waiting)
            return settleWrite(write, step);
    }
    find("lost write", m_plant.registers()[first], "settled without being asked for");
}

void Witness::settleWrite(Write &write, Cycle::Step step)
{
    const bool confirmed = step == Cycle::Step::Served;
    write.outcome = confirmed ? Outcome::Confirmed : Outcome::Failed;
    for (std::size_t i = 0; i < write.values.size(); ++i) {
        const std::size_t at = write.first + i;
        const Register &reg = m_plant.registers()[at];
        const int value = write.values[i];
        if (confirmed)
            m_confirmed.insert(at);
        if (confirmed && !m_plant.everHeld(at, value))
            find("lost write", reg, std::to_string(value) + " is confirmed and never arrived");
        const RegisterState state = m_link.registerState(reg.station, typeOf(reg), reg.address);
        if (state.writePending)
            find("lost write", reg, "still pending after its outcome");
        if (!confirmed && state.value == value && !m_plant.everHeld(at, value))
            find("lost write", reg, std::to_string(value) + " failed and is shown");
    }
}

void Witness::lookAtValues()
{
    for (std::size_t i = 0; i < m_plant.registers().size(); ++i) {
        const int shown = shownBy(i);
        const bool isSilent = shown != m_shown[i] && m_reported.count(i) == 0;
        judge(i, shown, "after the step");
        if (isSilent && m_plant.registers()[i].isPolled)
            find(m_confirmed.count(i) > 0 ? "silent confirmation" : "silent change",
                 m_plant.registers()[i], "shows " + std::to_string(shown));
        m_shown[i] = shown;
    }
    m_reported.clear();
    m_confirmed.clear();
}

void Witness::judge(std::size_t reg, int shown, const char *when)
{
    const Register &known = m_plant.registers()[reg];
    const RegisterState state = m_link.registerState(known.station, typeOf(known), known.address);
    if (shown != 0 && !state.writePending)
        m_known[reg] = true;
    const bool wasNeverRead = shown == 0 && !m_known[reg];
    const bool isWaitingWrite = state.writePending && shown == m_written[reg];
    if (!wasNeverRead && !isWaitingWrite && !m_plant.everHeld(reg, shown))
        find("wrong value", known, "shows " + std::to_string(shown) + ' ' + when);
}

void Witness::hear(const ValueChange &change)
{
    const std::size_t reg = m_plant.find(change.station, change.name.toStdString(), change.address);
    m_reported.insert(reg);
    // A written value is reported before it is shown, so what is seen here is what goes.
    judge(reg, shownBy(reg), "inside its report");
}

void Witness::lookAtTheEnd()
{
    for (const std::string &name : unread())
        m_findings.push_back("no recovery: " + name);
    for (const Write &write : m_writes) {
        const Register &reg = m_plant.registers()[write.first];
        if (write.outcome == Outcome::Waiting)
            find("lost write", reg, "has no outcome");
        const bool isShown = shownBy(write.first) == write.values.front();
        const bool mustBeShown = write.outcome == Outcome::Confirmed;
        if (!reg.isPolled && isShown != mustBeShown)
            find("lost write", reg, "shown otherwise than reported");
    }
    if (m_link.waitingWrites() > 0)
        m_findings.push_back("lost write: some still wait");
}

int Witness::writes(Outcome outcome) const
{
    return static_cast<int>(
        std::count_if(m_writes.begin(), m_writes.end(),
                      [&](const Write &write) { return write.outcome == outcome; }));
}

std::vector<std::string> Witness::unread()
{
    std::vector<std::string> names;
    for (std::size_t i = 0; i < m_plant.registers().size(); ++i) {
        const Register &reg = m_plant.registers()[i];
        if (!reg.isPolled)
            continue;
        const RegisterState state = m_link.registerState(reg.station, typeOf(reg), reg.address);
        if (state.failed || state.writePending || shownBy(i) != m_plant.heldNow(reg))
            names.push_back(reg.name());
    }
    return names;
}

void Witness::find(const std::string &what, const Register &reg, const std::string &detail)
{
    m_findings.push_back(what + ": " + reg.name() + ' ' + detail);
}

int Witness::shownBy(std::size_t reg)
{
    const Register &known = m_plant.registers()[reg];
    return m_link.values(known.station, typeOf(known), known.address).constFirst();
}

} // namespace dx4::faults
