// SPDX-License-Identifier: MIT
// The devices that are served: what is set on them, what passes, when they are refused.
#include "simulator/port.h"

#include "test_files.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <vector>

using namespace dx4::sim;

namespace {

termios lastSet {};

constexpr tcflag_t frameFlags = CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS | CLOCAL | CREAD;

/// Waits until bytes can be read, or the other end is gone.
void awaitInput(int descriptor)
{
    pollfd waited { descriptor, POLLIN, 0 };
    ASSERT_EQ(poll(&waited, 1, 30000), 1);
}

/// A descriptor of its own on the device that a master opens.
class Master {
public:
    explicit Master(const std::string &path)
        : m_descriptor(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
    }
    ~Master() { close(m_descriptor); }
    Master(const Master &) = delete;
    Master &operator=(const Master &) = delete;

    void write(const Bytes &bytes) const
    {
        EXPECT_EQ(::write(m_descriptor, bytes.data(), bytes.size()),
                  static_cast<ssize_t>(bytes.size()));
    }

    Bytes read() const
    {
        awaitInput(m_descriptor);
        Bytes bytes(64);
        bytes.resize(static_cast<std::size_t>(::read(m_descriptor, bytes.data(), bytes.size())));
        return bytes;
    }

private:
    int m_descriptor;
};

/// What opening a serial port throws, as far as it is an Error.
template <typename Error> std::string refusalOf(const std::string &path, int speed = 9600)
{
    try {
        Port::openSerial(path, speed, 'N', 1);
    } catch (const Error &error) {
        return error.what();
    }
    return "opened";
}

std::vector<int> openDescriptors()
{
    std::vector<int> descriptors;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) >= 0)
            descriptors.push_back(descriptor);
    }
    return descriptors;
}

struct FrameRow {
    const char *name;
    char parity;
    int stopBits;
    tcflag_t flags;
};

class SerialFrames : public ::testing::TestWithParam<FrameRow> { };

struct SpeedRow {
    int bitsPerSecond;
    speed_t code;
};

class SerialSpeeds : public ::testing::TestWithParam<SpeedRow> { };

// Bytes that a terminal which is not raw would change, echo or take for a key.
const Bytes control = { 0x01, 0x03, 0x04, 0x0A, 0x0D, 0x11, 0x13, 0x1A, 0x7F, 0xFF };

} // namespace

// Stands in for that of the system: a pseudo-terminal keeps no parity.
extern "C" [[gnu::visibility("default")]] int tcsetattr(int descriptor, int action,
                                                        const termios *settings) noexcept
{
    lastSet = *settings;
    using Function = int (*)(int, int, const termios *);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "tcsetattr"));
    return real(descriptor, action, settings);
}

TEST(PtyPort, CarriesEveryByteBothWays)
{
    Port port = Port::openPty();
    const Master master(port.path());

    master.write(control);
    awaitInput(port.descriptor());
    const Bytes heard = port.read();
    port.write(control);

    EXPECT_EQ(heard, control);
    EXPECT_EQ(master.read(), control);
}

TEST(PtyPort, HearsASingleByte)
{
    Port port = Port::openPty();
    const Master master(port.path());

    master.write({ 0x42 });
    awaitInput(port.descriptor());

    EXPECT_EQ(port.read(), Bytes { 0x42 });
}

TEST(PtyPort, LivesOnWhileNoMasterHasItOpen)
{
    Port port = Port::openPty();
    {
        const Master master(port.path());
    }

    EXPECT_EQ(port.read(), Bytes());
    port.write({ 0x01 });
}

TEST(PtyPort, LosesWhatTheDeviceDoesNotTake)
{
    Port port = Port::openPty();

    for (int i = 0; i < 100; ++i)
        EXPECT_NO_THROW(port.write(Bytes(4096, 0x55)));
}

TEST(Ports, AreNotHandedOnToOtherPrograms)
{
    const std::vector<int> before = openDescriptors();
    const Port pty = Port::openPty();
    const Port serial = Port::openSerial(pty.path(), 9600, 'N', 1);

    for (const int descriptor : openDescriptors()) {
        const bool isNew = std::count(before.begin(), before.end(), descriptor) == 0;
        EXPECT_TRUE(!isNew || fcntl(descriptor, F_GETFD) == FD_CLOEXEC) << descriptor;
    }
}

TEST(Ports, DoNotBecomeTheTerminalOfAProgramThatHasNone)
{
    const pid_t child = fork();
    if (child == 0) {
        setsid();
        try {
            const Port pty = Port::openPty();
            const Port serial = Port::openSerial(pty.path(), 9600, 'N', 1);
            _exit(open("/dev/tty", O_RDWR | O_CLOEXEC) < 0 ? 0 : 1);
        } catch (const std::exception &) {
            _exit(2);
        }
    }
    int status = -1;
    waitpid(child, &status, 0);

    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_TRUE(WIFEXITED(status));
}

TEST(PtyPort, MovesAndGivesItsDescriptorsBack)
{
    const std::size_t before = openDescriptors().size();
    {
        Port first = Port::openPty();
        const Port port(std::move(first));

        EXPECT_EQ(port.path().substr(0, 9), "/dev/pts/");
        EXPECT_EQ(openDescriptors().size(), before + 2);
    }

    EXPECT_EQ(openDescriptors().size(), before);
}

TEST_P(SerialFrames, AreSetAsAsked)
{
    const Port pty = Port::openPty();

    const Port port = Port::openSerial(pty.path(), 9600, GetParam().parity, GetParam().stopBits);

    EXPECT_EQ(lastSet.c_cflag & frameFlags, GetParam().flags);
    EXPECT_EQ(port.path(), pty.path());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SerialFrames,
    ::testing::Values(FrameRow { "NoParity", 'N', 1, CS8 | CLOCAL | CREAD },
                      FrameRow { "EvenParity", 'E', 1, CS8 | PARENB | CLOCAL | CREAD },
                      FrameRow { "OddParity", 'O', 1, CS8 | PARENB | PARODD | CLOCAL | CREAD },
                      FrameRow { "TwoStopBits", 'N', 2, CS8 | CSTOPB | CLOCAL | CREAD }),
    [](const auto &row) { return std::string(row.param.name); });

TEST(SerialPort, TakesBackWhatDisturbsAndKeepsTheRest)
{
    const Port pty = Port::openPty();
    const int descriptor = open(pty.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios other {};
    tcgetattr(descriptor, &other);
    other.c_cflag |= CRTSCTS | PARODD | CSTOPB | HUPCL;
    other.c_lflag |= ICANON | ECHO | ISIG;
    tcsetattr(descriptor, TCSANOW, &other);
    close(descriptor);

    const Port port = Port::openSerial(pty.path(), 9600, 'N', 1);

    EXPECT_EQ(lastSet.c_cflag & frameFlags, tcflag_t { CS8 | CLOCAL | CREAD });
    EXPECT_EQ(lastSet.c_lflag & (ICANON | ECHO | ISIG), 0U);
    EXPECT_EQ(lastSet.c_cflag & HUPCL, tcflag_t { HUPCL });
}

TEST_P(SerialSpeeds, AreSetForBothDirections)
{
    const Port pty = Port::openPty();

    const Port port = Port::openSerial(pty.path(), GetParam().bitsPerSecond, 'N', 1);

    EXPECT_EQ(cfgetispeed(&lastSet), GetParam().code);
    EXPECT_EQ(cfgetospeed(&lastSet), GetParam().code);
}

INSTANTIATE_TEST_SUITE_P(Rows, SerialSpeeds,
                         ::testing::Values(SpeedRow { 1200, B1200 }, SpeedRow { 2400, B2400 },
                                           SpeedRow { 4800, B4800 }, SpeedRow { 9600, B9600 },
                                           SpeedRow { 19200, B19200 }, SpeedRow { 38400, B38400 },
                                           SpeedRow { 57600, B57600 }, SpeedRow { 115200, B115200 },
                                           SpeedRow { 230400, B230400 }),
                         [](const auto &row) {
                             return "At" + std::to_string(row.param.bitsPerSecond);
                         });

TEST(SerialPort, RefusesAnUnusualSpeed)
{
    EXPECT_EQ(refusalOf<std::invalid_argument>("/dev/null", 9601),
              "speed 9601: expected a usual speed from 1200 to 230400 bit/s");
    EXPECT_EQ(refusalOf<std::invalid_argument>("/dev/null", 0),
              "speed 0: expected a usual speed from 1200 to 230400 bit/s");
}

TEST(SerialPort, RefusesWhatIsNotThereAndWhatIsNoSerialDevice)
{
    const std::string file = fileWith("port", "");

    EXPECT_EQ(refusalOf<std::system_error>("/nowhere/ttyS0"),
              "/nowhere/ttyS0: No such file or directory");
    EXPECT_EQ(refusalOf<std::system_error>(file), file + ": Inappropriate ioctl for device");
}

TEST(SerialPort, RefusesOneThatIsServedAlready)
{
    const Port pty = Port::openPty();
    const Port first = Port::openSerial(pty.path(), 9600, 'N', 1);

    const std::string refusal = refusalOf<std::runtime_error>(pty.path());

    EXPECT_EQ(refusal.substr(0, pty.path().size() + 12), pty.path() + ": in use by ");
    EXPECT_EQ(refusal.find("took no lock"), std::string::npos);
}

TEST(SerialPort, RefusesOneThatAnotherProgramHasOpenWithoutALock)
{
    const Port pty = Port::openPty();
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t stranger = fork();
    if (stranger == 0) {
        // Keeps the device open that it inherits, but not the far end.
        close(pty.descriptor());
        _exit(write(ends[1], "", 1) == 1 ? pause() : 1);
    }
    ASSERT_GT(stranger, 0);
    char ready = 1;
    ASSERT_EQ(read(ends[0], &ready, 1), 1);
    close(ends[0]);
    close(ends[1]);

    const std::string refusal = refusalOf<std::runtime_error>(pty.path());
    kill(stranger, SIGKILL);
    waitpid(stranger, nullptr, 0);

    EXPECT_NE(refusal.find(": in use by "), std::string::npos);
    EXPECT_NE(refusal.find("(process " + std::to_string(stranger) + ")"), std::string::npos);
    EXPECT_NE(refusal.find(", which took no lock; end it, as two programs on one line disturb each "
                           "other"),
              std::string::npos);
}

TEST(SerialPort, EndsWithItsDevice)
{
    std::optional<Port> pty(Port::openPty());
    Port port = Port::openSerial(pty->path(), 9600, 'N', 1);
    EXPECT_EQ(port.read(), Bytes());
    pty.reset();

    EXPECT_THROW(port.read(), std::system_error);
    EXPECT_THROW(port.write({ 0x01 }), std::system_error);
    EXPECT_NO_THROW(port.write({}));
}

TEST(SerialPort, SaysWhyItCannotBeReadOrWritten)
{
    const Port pty = Port::openPty();
    Port port = Port::openSerial(pty.path(), 9600, 'N', 1);
    const auto failure = [&](const char *file, auto &&act) -> std::string {
        const int other = open(file, O_RDONLY | O_CLOEXEC);
        dup2(other, port.descriptor());
        close(other);
        errno = 0;
        try {
            act();
        } catch (const std::system_error &error) {
            return error.what();
        }
        return "done";
    };

    const std::string &path = pty.path();
    EXPECT_EQ(failure("/", [&] { port.read(); }), path + ": Is a directory");
    EXPECT_EQ(failure("/dev/null", [&] { port.read(); }), path + ": Input/output error");
    EXPECT_EQ(failure("/", [&] { port.write({ 0x01 }); }), path + ": Bad file descriptor");
}
