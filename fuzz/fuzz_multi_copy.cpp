// SPDX-License-Identifier: MIT
// Any start, count and step of stepped copies, against the model.
#include "arguments.h"
#include "driver_api.h"
#include "driver_model.h"
#include "expect.h"
#include "fuzz_target.h"
#include "wrap.h"

namespace {

constexpr int mostCopies = 600; // a host asks for as many as fit a screen

int wholeInt(model::ByteSource &source)
{
    long long value = 0;
    for (int i = 0; i < 4; ++i)
        value = value * 256 + source.byte();
    return model::wrap(value);
}

int drawStep(model::ByteSource &source)
{
    return source.onceIn(4) ? wholeInt(source) : source.below(300) - 4;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const model::DriverModel expected;
    model::ByteSource source(data, size);
    const QString type = model::drawType(source);
    const int start = source.onceIn(4) ? wholeInt(source) : model::drawAddress(source);
    const int count = source.below(source.onceIn(8) ? mostCopies : 40) - 4;
    const int step = drawStep(source);
    QVector<QString> texts { QStringLiteral("kept") };
    QVector<int> addresses { 7 };
    QVector<QString> expectedTexts = texts;
    QVector<int> expectedAddresses = addresses;

    const int result = intf_multiCopy(type, start, count, step, &texts, &addresses);
    const int expectedResult =
        expected.multiCopy(type, start, count, step, &expectedTexts, &expectedAddresses);

    expect(result == expectedResult, "the result is the model's");
    expect(addresses == expectedAddresses, "the addresses are the model's");
    expect(texts == expectedTexts, "the texts are the model's");
    const int appended = result == 0 || count < 0 ? 0 : count;
    expect(texts.size() == 1 + appended && addresses.size() == 1 + appended,
           "a known type gives as many copies as asked for");
    return 0;
}
