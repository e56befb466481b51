// SPDX-License-Identifier: MIT
// Text from outside, made fit for readers who insist on UTF-8.
#include "simulator/utf8.h"

#include <array>

namespace dx4::sim {

namespace {

/// Bytes of the characters that begin alike. The second byte keeps out overlong forms, halves of
/// pairs and what lies beyond U+10FFFF.
struct Form {
    unsigned firstHighest;
    unsigned secondLowest;
    unsigned secondHighest;
    std::size_t length;
};

constexpr unsigned firstOfSeveral = 0xC2; // below it a byte stands alone or belongs to another

// Ascending: a form begins where the one above it ends.
constexpr std::array<Form, 8> forms = { {
    { 0xDF, 0x80, 0xBF, 2 },
    { 0xE0, 0xA0, 0xBF, 3 },
    { 0xEC, 0x80, 0xBF, 3 },
    { 0xED, 0x80, 0x9F, 3 },
    { 0xEF, 0x80, 0xBF, 3 },
    { 0xF0, 0x90, 0xBF, 4 },
    { 0xF3, 0x80, 0xBF, 4 },
    { 0xF4, 0x80, 0x8F, 4 },
} };

unsigned byteAt(const std::string &text, std::size_t at)
{
    return static_cast<unsigned char>(text[at]);
}

/// Bytes of the character that begins at `at`; 0 when none does. The zero behind a text belongs to
/// no character of several bytes, so nothing beyond it is read.
std::size_t lengthAt(const std::string &text, std::size_t at)
{
    const unsigned first = byteAt(text, at);
    if (first < 0x80)
        return 1;
    if (first < firstOfSeveral)
        return 0;
    for (const Form &form : forms) {
        if (first > form.firstHighest)
            continue;
        const unsigned second = byteAt(text, at + 1);
        if (second < form.secondLowest || second > form.secondHighest)
            return 0;
        for (std::size_t i = 2; i < form.length; ++i) {
            if (byteAt(text, at + i) >> 6 != 2)
                return 0;
        }
        return form.length;
    }
    return 0;
}

} // namespace

std::string validUtf8(const std::string &text)
{
    std::string valid;
    for (std::size_t at = 0; at != text.size();) {
        const std::size_t length = lengthAt(text, at);
        valid += length > 0 ? text.substr(at, length) : "\xEF\xBF\xBD";
        at += length > 0 ? length : 1;
    }
    return valid;
}

} // namespace dx4::sim
