// SPDX-License-Identifier: MIT
// The least that a runtime does with the plug-in alone: polls a status word and a monitor value ten
// times. It believes any reply of the right length and CRC; a real runtime compares station and
// function code too.
#include <driver_api.h>

#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int replyTimeoutMs = 300;
constexpr unsigned silenceUs = 4000; // 3.5 characters at 9600 bit/s

template <typename Function> Function *resolve(void *plugin, const char *name)
{
    return reinterpret_cast<Function *>(dlsym(plugin, name));
}

/// A port at 9600 bit/s, 8N1; -1 when it does not open.
int openPort(const char *path)
{
    const int port = open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings {};
    if (port < 0 || tcgetattr(port, &settings) != 0)
        return -1;
    cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    cfsetspeed(&settings, B9600);
    return tcsetattr(port, TCSANOW, &settings) == 0 ? port : -1;
}

/// The bytes that came in answer, at most `length`; empty after silence.
QByteArray exchange(int port, const FRAME_PRO &frame)
{
    usleep(silenceUs);
    tcflush(port, TCIFLUSH);
    if (write(port, frame.frame, static_cast<size_t>(frame.sendLength)) != frame.sendLength)
        return {};
    QByteArray reply;
    pollfd waiting { port, POLLIN, 0 };
    while (reply.size() < frame.replyLength && poll(&waiting, 1, replyTimeoutMs) == 1) {
        char byte = 0;
        if (read(port, &byte, 1) != 1)
            break;
        reply.append(byte);
    }
    return reply;
}

KEY_ADDRESS wanted(const QString &type, int address)
{
    KEY_ADDRESS key;
    key.station = 1;
    key.regType = type;
    key.address = address;
    key.count = 1;
    return key;
}

} // namespace

int main(int argc, char **argv)
{
    void *plugin = argc == 3 ? dlopen(argv[2], RTLD_NOW | RTLD_LOCAL) : nullptr;
    const int port = plugin ? openPort(argv[1]) : -1;
    if (port < 0) {
        std::fprintf(stderr, "usage: %s PORT PLUGIN, both of which can be opened\n", argv[0]);
        return 1;
    }
    const auto start = resolve<decltype(intf_initProperty)>(plugin, "intf_initProperty");
    const auto merge = resolve<decltype(intf_addrMerge)>(plugin, "intf_addrMerge");
    const auto next = resolve<decltype(intf_getSendFrame)>(plugin, "intf_getSendFrame");
    const auto answer = resolve<decltype(intf_dealRcvFrame)>(plugin, "intf_dealRcvFrame");
    const auto value = resolve<decltype(intf_getData)>(plugin, "intf_getData");

    int result = 0;
    start(nullptr, 0, nullptr, &result, "1#0#0#3#16", nullptr); // link 1, 3 tries, blocks of 16
    QList<KEY_ADDRESS> addresses { wanted(QStringLiteral("SW"), 0),
                                   wanted(QStringLiteral("D"), 4) };
    merge(addresses);

    int accepted = 0;
    FRAME_PRO frame;
    for (int i = 0; i < 10 && next(frame) == 1; ++i) {
        QByteArray reply = exchange(port, frame);
        QString errorText;
        accepted += answer(reply, errorText) == 1 ? 1 : 0;
    }
    unsigned char volts[2] = {}; // low byte first
    value(1, QStringLiteral("D"), 4, 1, volts);
    std::printf("%d of 10 replies accepted, D 4 = %d\n", accepted, volts[0] + 256 * volts[1]);
    return accepted == 10 ? 0 : 1;
}
