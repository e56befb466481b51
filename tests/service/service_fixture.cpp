// SPDX-License-Identifier: MIT
// A service over a plant, with what it told as text.
#include "service_fixture.h"

#include <QCoreApplication>

using namespace dx4::host;

ServiceSettings polling(const QVector<PlanEntry> &entries)
{
    ServiceSettings settings;
    settings.plan = planOf(entries);
    return settings;
}

ServiceUnderTest::ServiceUnderTest(const ServiceSettings &wanted)
    : plant(std::make_shared<Plant>(slowLine()))
    , settings(wanted)
{
    letTheLineGoOn(*plant);
}

ServiceUnderTest::~ServiceUnderTest()
{
    plant->release();
    service.reset(); // it tells of what is open, and what listens has to be there
}

void ServiceUnderTest::start()
{
    service = makeService(
        [shared = plant] {
            return LineParts { std::make_unique<PlantLine>(shared), privateCopy(), {} };
        },
        settings);
    listen();
}

void ServiceUnderTest::playTime()
{
    settings.runtime.pause = [shared = plant](Duration span) {
        shared->stations.line.advance(span);
    };
}

void ServiceUnderTest::listen()
{
    const LineService *from = service.get();
    const auto tell = [this](const QString &text) { told.push_back(text.toStdString()); };
    QObject::connect(from, &LineService::writeEnded, [=](const WriteOutcome &outcome) {
        outcomeIds.push_back(outcome.id);
        outcomes.push_back(outcome);
        tell(QStringLiteral("%1 %2").arg(outcome.id).arg(QLatin1String(writeEndName(outcome.end))));
    });
    QObject::connect(from, &LineService::alarmRaised, tell);
    QObject::connect(from, &LineService::lineOpened, [=] { tell(QStringLiteral("open")); });
    QObject::connect(from, &LineService::lineWentDown,
                     [=](const QString &reason) { tell(QStringLiteral("down: ") + reason); });
    QObject::connect(from, &LineService::stationLost,
                     [=](int station) { tell(QStringLiteral("lost %1").arg(station)); });
    QObject::connect(from, &LineService::stationBack,
                     [=](int station) { tell(QStringLiteral("back %1").arg(station)); });
    QObject::connect(from, &LineService::stopEnded, [=](int id, const StopReport &report) {
        stops.push_back(report);
        tell(QStringLiteral("stop %1: %2").arg(id).arg(report.text));
    });
    QObject::connect(from, &LineService::readEnded, [=](int id, const AccessResult &result) {
        reads.push_back(result);
        tell(QStringLiteral("read %1: %2").arg(id).arg(result.reason));
    });
    QObject::connect(from, &LineService::reloaded, [=](const QStringList &needRestart) {
        tell(QStringLiteral("reloaded: ") + needRestart.join(QLatin1Char(' ')));
    });
    QObject::connect(from, &LineService::countersTaken, [=](int id, const LineCounters &taken) {
        counters.push_back(taken);
        tell(QStringLiteral("counters %1").arg(id));
    });
    QObject::connect(from, &LineService::valuesChanged,
                     [=](const QVector<RegisterValue> &values) { changes.push_back(values); });
}

void ServiceUnderTest::waitFor(const std::function<bool()> &isSo) const
{
    while (!isSo())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void ServiceUnderTest::takeSignals() const
{
    QCoreApplication::sendPostedEvents(service.get());
}

int ServiceUnderTest::submit(int station, const char *type, int address,
                             const QVector<quint16> &values) const
{
    return service->submit({ station, QString::fromLatin1(type), address, values });
}

int ServiceUnderTest::shown(int station, const char *type, int address) const
{
    const auto snapshot = service->snapshot();
    const RegisterValue *value = snapshot->find(station, QString::fromLatin1(type), address);
    return value && value->state.known ? value->state.value : -1;
}
