// SPDX-License-Identifier: MIT
// Compares two drivers member by member and says in words what differs.
#include "compare.h"

#include <algorithm>

namespace model {

namespace {

constexpr char hexDigits[] = "0123456789ABCDEF";

std::string hexOf(const unsigned char *bytes, int length)
{
    while (length > 0 && bytes[length - 1] == 0)
        --length;
    std::string text(2 * static_cast<std::size_t>(length) + 2, '[');
    for (int i = 0; i < length; ++i) {
        const auto position = 2 * static_cast<std::size_t>(i) + 1;
        text[position] = hexDigits[bytes[i] >> 4];
        text[position + 1] = hexDigits[bytes[i] & 0xF];
    }
    text.back() = ']';
    return text;
}

// A plain loop: the memcmp of AddressSanitizer costs more than the comparison.
bool sameBytes(const unsigned char *a, const unsigned char *b, int length)
{
    unsigned char different = 0;
    for (int i = 0; i < length; ++i)
        different |= static_cast<unsigned char>(a[i] ^ b[i]);
    return different == 0;
}

std::string words(std::initializer_list<int> numbers)
{
    std::string text;
    for (int number : numbers)
        text += std::to_string(number) + ' ';
    return text;
}

std::string placed(int station, const QString &regType, int address)
{
    return std::to_string(station) + ' ' + describe(regType) + ' ' + std::to_string(address) + ' ';
}

class Report {
public:
    template <typename Value>
    void member(const char *name, const Value &real, const Value &expected)
    {
        if (!same(real, expected))
            line(name, describe(real), describe(expected));
    }

    template <typename List> void list(const char *name, const List &real, const List &expected)
    {
        if (real.size() != expected.size())
            line(name, "size " + describe(static_cast<int>(real.size())),
                 "size " + describe(static_cast<int>(expected.size())));
        const int common = static_cast<int>(std::min(real.size(), expected.size()));
        for (int i = 0; i < common; ++i) {
            if (same(real.at(i), expected.at(i)))
                continue;
            const std::string element = std::string(name) + '[' + std::to_string(i) + ']';
            line(element.c_str(), describe(real.at(i)), describe(expected.at(i)));
            return; // the first one tells enough
        }
    }

    std::string text;

private:
    void line(const char *name, const std::string &real, const std::string &expected)
    {
        text += std::string("  ") + name + ": driver " + real + ", model " + expected + '\n';
    }
};

} // namespace

bool same(const VARIABLE &a, const VARIABLE &b)
{
    return a.varKind == b.varKind && sameRequest(a, b) && sameBytes(a.data, b.data, 1024);
}

bool same(const _RCP_VAR_PRO &a, const _RCP_VAR_PRO &b)
{
    return a.linkId == b.linkId && a.station == b.station && a.regType == b.regType
        && a.address == b.address && a.count == b.count && a.bufferOffset == b.bufferOffset
        && a.spare == b.spare;
}

bool same(const FRAME_PRO &a, const FRAME_PRO &b)
{
    return a.sendLength == b.sendLength && a.replyLength == b.replyLength
        && a.replyDataOffset == b.replyDataOffset && a.replyDataLength == b.replyDataLength
        && sameBytes(a.frame, b.frame, std::clamp(a.sendLength, 0, 1024)) && same(a.var, b.var);
}

bool same(const _DATA_ &a, const _DATA_ &b)
{
    return a.flag0 == b.flag0 && a.writePending == b.writePending && a.word1 == b.word1
        && a.flags == b.flags && a.bitMask == b.bitMask && a.station == b.station
        && a.regType == b.regType && a.address == b.address && sameBytes(a.value, b.value, 4)
        && sameBytes(a.writeValue, b.writeValue, 4);
}

bool same(const KEY_ADDRESS &a, const KEY_ADDRESS &b)
{
    return a.hostTag == b.hostTag && a.hostWord1 == b.hostWord1 && a.hostWord2 == b.hostWord2
        && a.station == b.station && a.regType == b.regType && a.hostText == b.hostText
        && a.address == b.address && a.subAddress == b.subAddress && a.count == b.count
        && sameBytes(a.data, b.data, 1024);
}

std::string describe(const VARIABLE &var)
{
    return "{kind " + words({ var.varKind }) + placed(var.station, var.regType, var.address)
        + "count " + words({ var.count }) + hexOf(var.data, 1024) + '}';
}

std::string describe(const _RCP_VAR_PRO &recipe)
{
    return "{link " + words({ recipe.linkId })
        + placed(recipe.station, recipe.regType, recipe.address) + "count, offset, spare "
        + words({ recipe.count, recipe.bufferOffset, recipe.spare }) + '}';
}

std::string describe(const FRAME_PRO &frame)
{
    return "{send " + words({ frame.sendLength }) + "reply length, offset, data "
        + words({ frame.replyLength, frame.replyDataOffset, frame.replyDataLength })
        + hexOf(frame.frame, std::clamp(frame.sendLength, 0, 1024)) + ' ' + describe(frame.var)
        + '}';
}

std::string describe(const _DATA_ &area)
{
    return '{' + placed(area.station, area.regType, area.address)
        + "flag0, pending, word1, flags, mask "
        + words({ area.flag0, area.writePending, area.word1, area.flags, area.bitMask })
        + hexOf(area.value, 4) + ' ' + hexOf(area.writeValue, 4) + '}';
}

std::string describe(const KEY_ADDRESS &key)
{
    return '{' + describe(key.hostTag) + ' ' + describe(key.hostText) + ' '
        + placed(key.station, key.regType, key.address) + "sub, count, host words "
        + words({ key.subAddress, key.count, key.hostWord1, key.hostWord2 }) + hexOf(key.data, 1024)
        + '}';
}

std::string describe(int number)
{
    return std::to_string(number);
}

std::string describe(const QString &text)
{
    return '"' + text.toStdString() + '"';
}

std::string differences(const korvane_dx4 &real, const DriverModel &expected)
{
    Report report;
    report.member("valueChangeCallback is set", real.valueChangeCallback ? 1 : 0,
                  expected.valueChangeCallback ? 1 : 0);
    report.member("linkId", real.linkId, expected.linkId);
    report.member("writesLocalOnly", real.writesLocalOnly, expected.writesLocalOnly);
    report.member("property2", real.property2, expected.property2);
    report.member("retryLimit", real.retryLimit, expected.retryLimit);
    report.member("blockSize", real.blockSize, expected.blockSize);
    report.member("hostParam", real.hostParam, expected.hostParam);
    report.list("readList", real.readList, expected.readList);
    report.list("writeList", real.writeList, expected.writeList);
    report.list("conditionList", real.conditionList, expected.conditionList);
    report.list("dataAreas", real.dataAreas, expected.dataAreas);
    report.list("rcpVars", real.rcpVars, expected.rcpVars);
    report.list("rcpSendVars", real.rcpSendVars, expected.rcpSendVars);
    report.list("mergeIndexList", real.mergeIndexList, expected.mergeIndexList);
    report.list("regTypeList", real.regTypeList, expected.regTypeList);
    report.member("conditionVar", real.conditionVar, expected.conditionVar);
    report.member("curVar", real.curVar, expected.curVar);
    report.member("phase", real.phase, expected.phase);
    report.member("tryCount", real.tryCount, expected.tryCount);
    report.member("spare1", real.spare1, expected.spare1);
    report.member("failCount", real.failCount, expected.failCount);
    report.member("bitBlockSize", real.bitBlockSize, expected.bitBlockSize);
    report.member("writeBlockSize", real.writeBlockSize, expected.writeBlockSize);
    report.member("lastFailed", real.lastFailed, expected.lastFailed);
    report.member("spare2", real.spare2, expected.spare2);
    report.member("spare3", real.spare3, expected.spare3);
    report.list("sendFrames", real.sendFrames, expected.sendFrames);
    report.member("rcpIndex", real.rcpIndex, expected.rcpIndex);
    return report.text;
}

} // namespace model
