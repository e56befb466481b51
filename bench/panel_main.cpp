// SPDX-License-Identifier: MIT
// What the trend costs: values taken, and windows of a minute and of a day read and painted.
#include "panel/trendview/trend_page.h"

#include "panel/widgets/look.h"

#include <benchmark/benchmark.h>

#include <QApplication>

#include <cmath>
#include <memory>

using namespace dx4;
using namespace dx4::panel;

namespace {

constexpr int registers = 8;
constexpr Moment minuteMs = 60'000;
constexpr Moment dayMs = 24 * 60 * minuteMs;
constexpr Moment stepMs = 500; // between two changes of each register

/// A line of one drive on a clock of its own.
struct Plant {
    Plant();

    Clock clock();
    void play(Moment span);

    host::Config config;
    Moment now = 1'772'366'400'000; // 2026-03-01 12:00 UTC
    std::shared_ptr<host::LineSnapshot> snapshot = std::make_shared<host::LineSnapshot>();
    std::unique_ptr<TrendStore> store;
};

Plant::Plant()
{
    host::StationConfig drive;
    drive.name = QStringLiteral("Drive");
    config.stations = { drive };
    for (int i = 0; i < registers; ++i) {
        host::RegisterValue value;
        value.station = 1;
        value.regType = QStringLiteral("D");
        value.address = i;
        value.name = QStringLiteral("register %1").arg(i);
        value.scaling.factor = 0.01;
        value.scaling.decimals = 2;
        value.state.known = true;
        snapshot->registers.append(value);
    }
    store = std::make_unique<TrendStore>(
        config, [this] { return snapshot; }, clock());
}

Clock Plant::clock()
{
    return { [this] { return host::Duration(std::chrono::milliseconds(now)); },
             [this] { return QDateTime::fromMSecsSinceEpoch(now, Qt::UTC); } };
}

void Plant::play(Moment span)
{
    for (const Moment end = now + span; now < end; now += stepMs) {
        const double seconds = static_cast<double>(now) / 1000.0;
        for (int i = 0; i < registers; ++i)
            snapshot->registers[i].state.value =
                static_cast<quint16>(3000.0 + 2000.0 * std::sin(seconds * (i + 1)));
        store->noteValues(snapshot->registers);
    }
    snapshot->takenAt = QDateTime::fromMSecsSinceEpoch(now, Qt::UTC);
}

Plant &plantOfADay()
{
    static Plant plant;
    static const bool isPlayed = [] {
        plant.play(dayMs);
        return true;
    }();
    benchmark::DoNotOptimize(isPlayed);
    return plant;
}

/// Read, reduced and painted anew each time, on a screen in memory of 1280 x 800.
void windowPainted(benchmark::State &state, Moment span)
{
    Plant &plant = plantOfADay();
    TrendPage page(*plant.store, plant.clock().steady);
    page.resize(1280, 680);
    page.show();
    QVector<TraceChoice> choices;
    for (int i = 0; i < registers; ++i)
        choices.append({ { 1, QStringLiteral("D"), i }, -1 });
    page.choose(choices);
    page.setSpan(span);
    page.setPaused(true);
    QCoreApplication::processEvents();
    auto *view = page.findChild<TraceView *>();
    const int before = page.drawn();
    Moment by = -span / 100;
    for (auto _ : state) {
        // To and fro, so that each picture is another one.
        by = -by;
        Q_EMIT view->panned(by);
        view->repaint();
        QCoreApplication::processEvents();
    }
    std::size_t columns = 0;
    for (const TraceReading &trace : view->scene().traces)
        columns += trace.run.columns.size();
    state.counters["columns"] = static_cast<double>(columns);
    state.counters["pictures"] = page.drawn() - before;
}

void valuesTaken(benchmark::State &state)
{
    Plant plant;
    plant.play(minuteMs);
    for (auto _ : state)
        plant.play(stepMs);
    state.SetItemsProcessed(state.iterations() * registers);
    state.counters["bytes_per_register"] = static_cast<double>(plant.store->bytes()) / registers;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setPalette(paletteOf(lightLook()));
    benchmark::RegisterBenchmark("a minute of 8 traces painted", windowPainted, minuteMs)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("a day of 8 traces painted", windowPainted, dayMs)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("8 values taken", valuesTaken);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
