// SPDX-License-Identifier: MIT
// Any text as an address, for every type and access, against the model.
#include "arguments.h"
#include "driver_api.h"
#include "driver_model.h"
#include "expect.h"
#include "fuzz_target.h"

namespace {

constexpr std::size_t choiceBytes = 8;

// Half of the inputs are Latin-1, the others arbitrary UTF-16, unpaired surrogates included.
QString textOf(bool wide, const std::uint8_t *bytes, std::size_t size)
{
    if (!wide)
        return QString::fromLatin1(reinterpret_cast<const char *>(bytes), static_cast<int>(size));
    QString text;
    for (std::size_t i = 0; i + 1 < size; i += 2)
        text += QChar(static_cast<ushort>(bytes[i] | bytes[i + 1] << 8));
    return text;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const model::DriverModel expected;
    const std::size_t choices = size < choiceBytes ? size : choiceBytes;
    model::ByteSource source(data, choices);
    const bool wide = source.onceIn(2);
    const QString type = model::drawType(source);
    const int count = source.onceIn(8) ? model::drawAddress(source) : source.below(40) - 2;
    const int option = source.below(4) - 1; // type flag and sub-index
    const int accessMode = source.below(5) - 1;
    const QString text = textOf(wide, data + choices, size - choices);

    int address = -99;
    int expectedAddress = -99;
    const int validity = intf_checkAddrValidity(type, text, &address, count, option);
    const int expectedValidity =
        expected.checkAddrValidity(type, text, &expectedAddress, count, option);
    expect(validity == expectedValidity, "intf_checkAddrValidity gives the model's result");
    expect(address == expectedAddress, "intf_checkAddrValidity gives the model's address");

    const int check = intf_checkAddr(type, text, &address, option, count, accessMode);
    const int expectedCheck =
        expected.checkAddr(type, text, &expectedAddress, option, count, accessMode);
    expect(check == expectedCheck, "intf_checkAddr gives the model's result");
    expect(address == expectedAddress, "intf_checkAddr gives the model's address");
    expect(intf_checkAddr(type, text, nullptr, option, count, accessMode) == check,
           "the result does not depend on where the address goes");
    return 0;
}
