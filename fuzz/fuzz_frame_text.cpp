// SPDX-License-Identifier: MIT
// Any bytes as a frame to explain, and as the words that it is typed in.
#include "cli/registers/frame_text.h"
#include "expect.h"
#include "fuzz_target.h"

using namespace dx4::cli;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray frame(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const FrameText text = explainFrame(frame, size % 2 == 0 ? -1 : 0xD000);
    QByteArray told;
    for (const FrameField &field : text.fields)
        told += field.bytes;
    expect(told == frame, "no byte is left out");
    expect(fieldLines(text).size() == text.fields.size(), "each field has a line");

    QString error;
    const auto shown = parseBytes({ bytesText(frame) }, &error);
    expect(frame.isEmpty() || (shown && *shown == frame), "what is shown can be typed");
    const auto typed = parseBytes(QString::fromUtf8(frame).split(QLatin1Char(' ')), &error);
    expect(typed.has_value() || !error.isEmpty(), "a word that is none is named");
    return 0;
}
