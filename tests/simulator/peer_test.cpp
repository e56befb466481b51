// SPDX-License-Identifier: MIT
// Peers that know nothing of this project: mbpoll as master, tshark as reader of a capture.
#include "missing_tool.h"
#include "served_line.h"

#include <gtest/gtest.h>

#include <modbus/modbus.h>

#include <sstream>

namespace {

struct PollRow {
    const char *name;
    const char *address; // decimal, as mbpoll wants it
    const char *count;
    const char *value; // what the first line of values must end with
};

/// mbpoll against station 1; `more` goes behind the device.
std::string poll(const ServedLine &line, const std::string &address, const std::string &count,
                 const std::vector<std::string> &more, int *code)
{
    std::vector<std::string> command = { "mbpoll", "-m", "rtu", "-b", "9600", "-P",
                                         "none",   "-0", "-1",  "-q", "-t",   "4",
                                         "-o",     "5",  "-a",  "1",  "-r",   address };
    if (more.empty())
        command.insert(command.end(), { "-c", count });
    command.push_back(line.device);
    command.insert(command.end(), more.begin(), more.end());
    return outputOf(command, code);
}

bool isMissing(const std::vector<std::string> &command)
{
    int code = 0;
    outputOf(command, &code);
    return code == 127;
}

/// The lines that tell of frames; the others are warnings.
std::vector<std::string> decoded(const std::string &output)
{
    std::vector<std::string> frames;
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);) {
        if (line.rfind("raw:", 0) == 0)
            frames.push_back(line);
    }
    return frames;
}

class MbpollReads : public ::testing::TestWithParam<PollRow> {
protected:
    void SetUp() override
    {
        if (isMissing({ "mbpoll", "-V" }))
            END_WITHOUT("mbpoll");
    }
};

class MbpollWrites : public MbpollReads { };

} // namespace

TEST_P(MbpollReads, TheRegister)
{
    ServedLine line;
    int code = -1;

    const std::string output = poll(line, GetParam().address, GetParam().count, {}, &code);

    EXPECT_EQ(code, 0);
    EXPECT_NE(output.find(GetParam().value), std::string::npos) << output;
}

INSTANTIATE_TEST_SUITE_P(Rows, MbpollReads,
                         ::testing::Values(PollRow { "Parameter", "63488", "1", "[63488]: \t5000" },
                                           PollRow { "ParametersOfGroupC", "64512", "14",
                                                     "[64525]: \t0" },
                                           PollRow { "Monitor", "53252", "1", "[53252]: \t566" },
                                           PollRow { "AllMonitors", "53248", "38", "[53285]: \t0" },
                                           PollRow { "StatusWord", "8192", "1", "[8192]: \t1" },
                                           PollRow { "FaultCode", "8193", "1", "[8193]: \t0" }),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_P(MbpollWrites, TheRegister)
{
    ServedLine line;
    int code = -1;
    std::vector<std::string> values = { GetParam().value };
    if (std::string(GetParam().count) == "2")
        values.push_back("2");

    const std::string output = poll(line, GetParam().address, "", values, &code);

    EXPECT_EQ(code, 0);
    EXPECT_NE(output.find(std::string("Written ") + GetParam().count + " references"),
              std::string::npos)
        << output;
}

INSTANTIATE_TEST_SUITE_P(Rows, MbpollWrites,
                         ::testing::Values(PollRow { "Parameter", "61443", "1", "99" },
                                           PollRow { "ParametersOfGroupC", "64512", "2", "1" },
                                           PollRow { "ControlWord", "4097", "1", "1" },
                                           PollRow { "SetFrequency", "4098", "1", "3000" },
                                           PollRow { "BothCommands", "4097", "2", "1" }),
                         [](const auto &row) { return std::string(row.param.name); });

class MbpollRefusals : public MbpollReads { };

TEST_P(MbpollRefusals, AreNamedByTheMaster)
{
    ServedLine line;
    int code = -1;

    const std::string output = poll(line, GetParam().address, GetParam().count, {}, &code);

    EXPECT_NE(output.find(GetParam().value), std::string::npos) << output;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MbpollRefusals,
    ::testing::Values(PollRow { "ControlWord", "4097", "1", "Illegal data address" },
                      PollRow { "BehindTheMonitors", "53286", "1", "Illegal data address" },
                      PollRow { "GroupA", "64000", "1", "Illegal data address" }),
    [](const auto &row) { return std::string(row.param.name); });

TEST(Tshark, DecodesEveryFrameOfASession)
{
    if (isMissing({ "tshark", "-v" }))
        END_WITHOUT("tshark");
    const std::string capture = ::testing::TempDir() + "session.pcap";
    ServedLine line({ "--speed", "0", "--pcap", capture });
    modbus_t *master = modbus_new_rtu(line.device.c_str(), 9600, 'N', 8, 1);
    modbus_set_slave(master, 1);
    modbus_set_response_timeout(master, 5, 0);
    ASSERT_EQ(modbus_connect(master), 0);
    std::uint16_t values[14] = { 1, 2 };
    ASSERT_EQ(modbus_write_register(master, 0x1002, 3000), 1);
    ASSERT_EQ(modbus_write_registers(master, 0xF000, 2, values), 2);
    ASSERT_EQ(modbus_read_registers(master, 0xD000, 14, values), 14);
    ASSERT_EQ(modbus_read_registers(master, 0x2000, 2, values), 2);
    ASSERT_EQ(modbus_read_registers(master, 0x0000, 1, values), -1);
    modbus_free(master);
    ASSERT_EQ(line.quit(), 0);

    const std::vector<std::string> frames = decoded(outputOf({ "tshark",
                                                               "-r",
                                                               capture,
                                                               "-o",
                                                               "mbrtu.udp.port:502",
                                                               "-o",
                                                               "mbrtu.crc_verification:TRUE",
                                                               "-T",
                                                               "fields",
                                                               "-E",
                                                               "separator=,",
                                                               "-e",
                                                               "frame.protocols",
                                                               "-e",
                                                               "mbrtu.crc16.status",
                                                               "-e",
                                                               "modbus.func_code",
                                                               "-e",
                                                               "modbus.exception_code",
                                                               "-e",
                                                               "_ws.malformed" }));

    const std::string good = "raw:ip:udp:mbrtu:modbus,1,"; // 1 is a good CRC
    const std::vector<std::string> expected = { good + "6,,",  good + "6,,", good + "16,,",
                                                good + "16,,", good + "3,,", good + "3,,",
                                                good + "3,,",  good + "3,,", good + "3,,",
                                                good + "3,2," };
    EXPECT_EQ(frames, expected);
}
