// SPDX-License-Identifier: MIT
// A runtime over a scripted line, with what it reported as text.
#include "runtime_fixture.h"

#include <algorithm>
#include <stdexcept>

using namespace dx4::host;

namespace {

std::string textOf(const WriteOutcome &outcome)
{
    std::string text = std::to_string(outcome.id) + ' ' + writeEndName(outcome.end);
    if (outcome.exceptionCode != 0)
        text += " (exception " + std::to_string(outcome.exceptionCode) + ')';
    if (outcome.end == WriteEnd::Confirmed && !outcome.sent)
        text += " (held)";
    return text;
}

RuntimeSettings withoutSleep(RuntimeSettings settings, MemoryLine &line)
{
    settings.pause = [&line](Duration span) { line.advance(span); };
    return settings;
}

} // namespace

LineSettings slowLine()
{
    LineSettings settings;
    settings.speed = 10000;
    settings.responseTimeout = std::chrono::milliseconds(100);
    return settings;
}

std::unique_ptr<Plugin> privateCopy()
{
    return Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy);
}

Plan planOf(const QVector<PlanEntry> &entries)
{
    Planner planner(privateCopy(), LinkSettings());
    QString error;
    const auto plan = planner.make(entries, &error);
    if (!plan)
        throw std::runtime_error(error.toStdString());
    return *plan;
}

RuntimeUnderTest::RuntimeUnderTest(const RuntimeSettings &settings, const LineSettings &line)
    : stations(line)
    , host(privateCopy(), stations.line, withoutSleep(settings, stations.line))
{
    host.onOutcome([this](const WriteOutcome &outcome) {
        outcomes.push_back(textOf(outcome));
        outcomeRecords.push_back(outcome);
    });
    host.onAlarm([this](const QString &text) { alarms.push_back(text.toStdString()); });
}

void RuntimeUnderTest::steps(int count)
{
    for (int done = 0; done < count;) {
        const auto before = stations.line.sent().size();
        const Runtime::Step step = host.step();
        if (step == Runtime::Step::Idle || step == Runtime::Step::LineDown)
            stations.line.advance(host.idleTime());
        if (step != Runtime::Step::Idle || stations.line.sent().size() > before)
            ++done;
    }
}

void RuntimeUnderTest::runFor(Duration span)
{
    const Duration end = stations.line.now() + span;
    host.run([&] { return stations.line.now() >= end; });
}

int RuntimeUnderTest::write(int station, const char *type, int address,
                            const QVector<quint16> &values)
{
    WriteWish wish;
    wish.station = station;
    wish.regType = QString::fromLatin1(type);
    wish.address = address;
    wish.values = values;
    return host.write(wish);
}

int RuntimeUnderTest::sent(int station, int function) const
{
    const QVector<QByteArray> &frames = stations.line.sent();
    return static_cast<int>(std::count_if(frames.begin(), frames.end(), [&](const auto &frame) {
        return frame.at(0) == static_cast<char>(station)
            && frame.at(1) == static_cast<char>(function);
    }));
}
