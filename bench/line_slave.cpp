// SPDX-License-Identifier: MIT
// A libmodbus slave in a process of its own, at the other end of a pseudo-terminal.
#include "line_slave.h"

#include "driver_link.h"

#include <modbus.h>

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace bench {
namespace {

[[noreturn]] void serve(int line)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    modbus_t *slave = modbus_new_rtu("/dev/null", 115200, 'N', 8, 1);
    modbus_mapping_t *registers = modbus_mapping_new(0, 0, 65536, 0);
    modbus_set_slave(slave, pollStation);
    modbus_set_socket(slave, line);
    unsigned char request[MODBUS_RTU_MAX_ADU_LENGTH];
    for (;;) {
        const int length = modbus_receive(slave, request);
        if (length > 0)
            modbus_reply(slave, request, length, registers);
    }
}

void makeRaw(int line)
{
    termios settings {};
    tcgetattr(line, &settings);
    cfmakeraw(&settings);
    tcsetattr(line, TCSANOW, &settings);
}

} // namespace

LineSlave::LineSlave()
    : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0)
        endWith("no pseudo-terminal");
    m_port = ptsname(m_master);
    m_keptOpen = open(m_port.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    makeRaw(m_keptOpen);
    m_process = fork();
    if (m_process == 0)
        serve(m_master);
}

LineSlave::~LineSlave()
{
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
    close(m_keptOpen);
    close(m_master);
}

} // namespace bench
