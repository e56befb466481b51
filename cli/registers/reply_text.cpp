// SPDX-License-Identifier: MIT
// What became of a reply, for scripts and as an exit code.
#include "cli/registers/reply_text.h"

#include <iterator>

namespace dx4::cli {
namespace {

struct Row {
    const char *name;
    ExitCode code;
};

// In the order of host::ReplyCause.
constexpr Row rows[] = {
    { "good", ExitDone },
    { "silence", ExitNoReply },
    { "truncated", ExitDamagedReply },
    { "crc", ExitDamagedReply },
    { "station", ExitForeignReply },
    { "function", ExitForeignReply },
    { "length", ExitForeignReply },
    { "echo", ExitForeignReply },
    { "exception", ExitRefused },
};
static_assert(std::size(rows) == static_cast<std::size_t>(host::ReplyCause::Exception) + 1);

const Row &rowOf(host::ReplyCause cause)
{
    return rows[static_cast<std::size_t>(cause)];
}

} // namespace

QString causeName(host::ReplyCause cause)
{
    return QString::fromLatin1(rowOf(cause).name);
}

ExitCode causeCode(const host::ReplyVerdict &verdict)
{
    return rowOf(verdict.cause).code;
}

} // namespace dx4::cli
