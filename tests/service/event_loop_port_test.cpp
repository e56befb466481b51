// SPDX-License-Identifier: MIT
// A service on the event loop over pseudo-terminals: a simulated inverter, and one that says
// nothing.
#include "host/line/serial_line.h"
#include "host/service/event_loop_service.h"

#include "child_process.h"
#include "runtime_fixture.h"

#include <QCoreApplication>
#include <QFile>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdlib>
#include <functional>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

using namespace dx4::host;
using std::chrono::hours;
using std::chrono::seconds;

namespace {

void turnUntil(const std::function<bool()> &isSo)
{
    while (!isSo())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

LineFactory portLine(const QString &device, Duration responseTimeout)
{
    LineSettings settings;
    settings.port = device;
    settings.responseTimeout = responseTimeout;
    return [settings] {
        return LineParts { std::make_unique<SerialLine>(settings), privateCopy(), {} };
    };
}

ServiceSettings pollingAndStopping()
{
    ServiceSettings settings;
    settings.plan = planOf({ { 1, QStringLiteral("D 0-9") }, { 1, QStringLiteral("SW") } });
    settings.runtime.stops = { { 1, 0 } };
    return settings;
}

/// The far end of a pseudo-terminal on which nobody answers.
class SilentEnd {
public:
    SilentEnd()
        : m_end(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
        , m_notifier(m_end, QSocketNotifier::Read)
    {
        grantpt(m_end);
        unlockpt(m_end);
        device = m_folder.filePath(QStringLiteral("line"));
        QFile::link(QString::fromLocal8Bit(ptsname(m_end)), device);
        termios raw {};
        tcgetattr(m_end, &raw);
        cfmakeraw(&raw);
        tcsetattr(m_end, TCSANOW, &raw);
        QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] {
            char byte = 0;
            heard += static_cast<int>(read(m_end, &byte, 1));
        });
    }

    /// The name goes first: another program may get the number of the device at once, and the
    /// service would find that one in its place.
    void hangUp()
    {
        m_notifier.setEnabled(false);
        QFile::remove(device);
        close(m_end);
    }

    QString device;
    int heard = 0; ///< bytes

private:
    const QTemporaryDir m_folder;
    const int m_end;
    QSocketNotifier m_notifier;
};

/// A simulated inverter and what a service over it told.
class SimulatedInverter : public ::testing::Test {
protected:
    SimulatedInverter()
        : m_inverter({ SIMULATOR_FILE, "--pty", "--json", "--speed", "0" })
    {
        const std::string opened = m_inverter.readLine();
        const std::size_t begin = opened.find("/dev/");
        const std::string device = opened.substr(begin, opened.find('"', begin) - begin);
        service = std::make_unique<EventLoopService>(
            portLine(QString::fromStdString(device), std::chrono::milliseconds(300)),
            pollingAndStopping());
        QObject::connect(service.get(), &LineService::lineOpened, [this] { isOpen = true; });
        QObject::connect(
            service.get(), &LineService::writeEnded,
            [this](const WriteOutcome &outcome) { told.push_back(outcome.text.toStdString()); });
        QObject::connect(
            service.get(), &LineService::stopEnded,
            [this](int, const StopReport &report) { told.push_back(report.text.toStdString()); });
        QObject::connect(service.get(), &LineService::backedUp,
                         [this](int, const ParameterSet &read, const QString &) { set = read; });
    }

    const RegisterValue *find(const char *type, int address)
    {
        snapshot = service->snapshot();
        return snapshot->find(1, QString::fromLatin1(type), address);
    }

private:
    ChildProcess m_inverter;

protected:
    bool isOpen = false;
    Texts told;
    ParameterSet set;
    std::shared_ptr<const LineSnapshot> snapshot;
    std::unique_ptr<EventLoopService> service;
};

} // namespace

TEST(EventLoopOnAPort, ASilentStationKeepsTheLoopFree)
{
    SilentEnd station;
    EventLoopService service(portLine(station.device, hours(1)), pollingAndStopping());
    QString reason;
    QObject::connect(&service, &LineService::lineWentDown,
                     [&reason](const QString &text) { reason = text; });
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
    turnUntil([&station] { return station.heard == 8; });

    timer.start(0);
    turnUntil([&ticks] { return ticks == 100; }); // the request waits for its reply meanwhile

    EXPECT_EQ(station.heard, 8);
    EXPECT_EQ(reason.toStdString(), "");
    station.hangUp(); // else its end takes as long as the response timeout
    turnUntil([&reason] { return !reason.isEmpty(); });
}

TEST(EventLoopOnAPort, APortThatIsNotThereIsTriedAgainAndAgain)
{
    EventLoopService service(portLine(QStringLiteral("/dev/no-such-port"), seconds(1)));
    QString reason;
    QObject::connect(&service, &LineService::lineWentDown,
                     [&reason](const QString &text) { reason = text; });

    turnUntil([&reason] { return !reason.isEmpty(); });

    EXPECT_EQ(reason.toStdString(), "/dev/no-such-port: No such file or directory");
}

TEST_F(SimulatedInverter, IsPolledWrittenToAndStopped)
{
    turnUntil([this] {
        const RegisterValue *status = find("SW", 0);
        return isOpen && status && status->state.known;
    });

    service->submit({ 1, QStringLiteral("FRE"), 0, { 2500 } });
    turnUntil([this] { return told.size() == 1; });
    service->stop(seconds(10));
    turnUntil([this] { return told.size() == 2; });

    EXPECT_EQ(told, (Texts { "station 1, FRE 0 (0x1002): confirmed", "all stops confirmed" }));
    EXPECT_EQ(find("FRE", 0)->state.value, 2500);
}

TEST_F(SimulatedInverter, LeavesMostOfTheStackUnused)
{
    service->backUp({});
    turnUntil([this] { return isComplete(set); });
    service->stop(seconds(10));
    turnUntil([this] { return told.size() == 1; });

    RecordProperty("bytes", static_cast<int>(service->deepestStack()));
    EXPECT_GT(service->deepestStack(), 4096U);
    EXPECT_LT(service->deepestStack(), EventLoopService::stackSize / 8);
}

TEST_F(SimulatedInverter, IsStoppedAtTheEndOfTheService)
{
    turnUntil([this] { return isOpen; });
    service->stop(seconds(10));

    service.reset();

    EXPECT_EQ(told, Texts { "all stops confirmed" });
}
