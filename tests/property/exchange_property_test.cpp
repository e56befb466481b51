// SPDX-License-Identifier: MIT
// What is written on the line is what is read back, through a slave that knows Modbus only.
#include "link_under_test.h"
#include "property.h"

#include <map>

namespace {

// Sixteen-bit registers behind functions 3, 6 and 16; knows nothing of the driver's types.
class Slave {
public:
    std::map<int, int> registers;

    QByteArray answer(const FRAME_PRO &frame)
    {
        const unsigned char *request = frame.frame;
        const int first = wordAt(request, 2);
        RC_ASSERT(withCrc(QByteArray(reinterpret_cast<const char *>(request), frame.sendLength - 2))
                  == QByteArray(reinterpret_cast<const char *>(request), frame.sendLength));
        switch (request[1]) {
        case 3:
            return readReply(request, first, wordAt(request, 4));
        case 6:
            registers[first] = wordAt(request, 4);
            return echoOf(request);
        case 16:
            RC_ASSERT(request[6] == 2 * wordAt(request, 4));
            for (int i = 0; i < wordAt(request, 4); ++i)
                registers[first + i] = wordAt(request, 7 + 2 * i);
            return echoOf(request);
        default:
            RC_FAIL("a function that no slave has");
            return {};
        }
    }

private:
    static int wordAt(const unsigned char *bytes, int position)
    {
        return bytes[position] * 256 + bytes[position + 1];
    }

    static QByteArray echoOf(const unsigned char *request)
    {
        return withCrc(QByteArray(reinterpret_cast<const char *>(request), 6));
    }

    QByteArray readReply(const unsigned char *request, int first, int count)
    {
        QByteArray reply;
        reply.append(static_cast<char>(request[0]));
        reply.append('\x03');
        reply.append(static_cast<char>(2 * count));
        for (int i = 0; i < count; ++i) {
            reply.append(static_cast<char>(registers[first + i] / 256));
            reply.append(static_cast<char>(registers[first + i] % 256));
        }
        return withCrc(reply);
    }
};

// One request and its answer, if there is something to send.
void exchange(Slave &slave)
{
    FRAME_PRO frame;
    if (intf_getSendFrame(frame) == 0)
        return;
    QByteArray reply = slave.answer(frame);
    QString errorText;
    RC_ASSERT(intf_dealRcvFrame(reply, errorText) == 1);
}

// The driver has nothing to send once after five writes when there is no cyclic read.
void exchangeAll(Slave &slave)
{
    while (!driver.writeList.isEmpty() || !driver.conditionList.isEmpty())
        exchange(slave);
}

std::vector<int> drawValues(int count)
{
    return *rc::gen::container<std::vector<int>>(static_cast<std::size_t>(count),
                                                 rc::gen::inRange(0, 0x10000));
}

} // namespace

RC_GTEST_PROP(Exchange, ACyclicReadShowsTheRegistersOfTheSlave, ())
{
    const int address = *rc::gen::inRange(0, 32);
    const int count = *rc::gen::inRange(1, 126);
    const std::vector<int> values = drawValues(count);
    LinkUnderTest link(125);
    Slave slave;
    for (int i = 0; i < count; ++i)
        slave.registers[0xD000 + address + i] = values[static_cast<std::size_t>(i)];
    link.poll(QStringLiteral("D"), address, count);

    exchange(slave);

    RC_ASSERT(link.shown(QStringLiteral("D"), address, count) == values);
}

RC_GTEST_PROP(Exchange, WrittenParametersAreReadBack, ())
{
    const int group = *rc::gen::inRange(0, 11);
    const int index = *rc::gen::inRange(0, 30);
    const int count = *rc::gen::inRange(1, 200);
    const std::vector<int> values = drawValues(count);
    const int address = group * 256 + index;
    LinkUnderTest writer(*rc::gen::inRange(1, 124));
    Slave slave;
    writer.write(QStringLiteral("F"), address, values);
    exchangeAll(slave);
    intf_initProperty(writer.block.data(), 0, nullptr, nullptr, "1#0#0#3#120", &writer.mutex);
    writer.readOnce(QStringLiteral("F"), address, count);

    exchangeAll(slave);

    const int groupBase = (group == 10 ? 0xFC : 0xF0 + group) * 256;
    RC_ASSERT(slave.registers[groupBase + index] == values.front());
    RC_ASSERT(writer.shown(QStringLiteral("F"), address, count) == values);
}

RC_GTEST_PROP(Exchange, AConfirmedWriteStaysShown, ())
{
    const int count = *rc::gen::inRange(1, 40);
    const std::vector<int> values = drawValues(count);
    LinkUnderTest link(16);
    Slave slave;
    link.write(QStringLiteral("F"), 0, values);

    exchangeAll(slave);

    RC_ASSERT(link.shown(QStringLiteral("F"), 0, count) == values);
    for (const _DATA_ &area : std::as_const(driver.dataAreas))
        RC_ASSERT(area.writePending == 0);
}

RC_GTEST_PROP(Exchange, CommandsGoToTheirFixedRegister, ())
{
    const int value = *rc::gen::inRange(0, 0x10000);
    const bool isFrequency = *rc::gen::arbitrary<bool>();
    LinkUnderTest link(16);
    Slave slave;
    link.write(isFrequency ? QStringLiteral("FRE") : QStringLiteral("CW"), 0, { value });

    exchange(slave);

    const int target = isFrequency ? 0x1002 : 0x1001;
    RC_ASSERT(slave.registers == (std::map<int, int> { { target, value } }));
}
