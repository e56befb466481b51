// SPDX-License-Identifier: MIT
// Keys of a terminal that move a table.
#include "cli/console/scroll_keys.h"

#include <poll.h>
#include <unistd.h>

namespace dx4::cli {
namespace {

struct Key {
    const char *bytes;
    Movement movement;
};

const Key keys[] = {
    { "\x1b[A", { -1, 0, false, false } },  { "\x1bOA", { -1, 0, false, false } },
    { "\x1b[B", { 1, 0, false, false } },   { "\x1bOB", { 1, 0, false, false } },
    { "\x1b[5~", { 0, -1, false, false } }, { "\x1b[6~", { 0, 1, false, false } },
    { "\x1b[H", { 0, 0, true, false } },    { "\x1bOH", { 0, 0, true, false } },
    { "\x1b[1~", { 0, 0, true, false } },   { "\x1b[F", { 0, 0, false, true } },
    { "\x1bOF", { 0, 0, false, true } },    { "\x1b[4~", { 0, 0, false, true } },
};

constexpr int longestKey = 4; // bytes

/// From the background neither is allowed: the attempt would stop the program.
bool isInForeground()
{
    return isatty(STDIN_FILENO) && tcgetpgrp(STDIN_FILENO) == getpgrp();
}

} // namespace

Movement movementOf(QByteArray &bytes)
{
    Movement sum;
    while (!bytes.isEmpty()) {
        const Key *found = nullptr;
        bool mayBecomeOne = false;
        for (const Key &key : keys) {
            if (bytes.startsWith(key.bytes))
                found = &key;
            mayBecomeOne = mayBecomeOne || QByteArray(key.bytes).startsWith(bytes);
        }
        if (!found && mayBecomeOne && bytes.size() < longestKey)
            return sum;
        // What was typed before a jump does not count any more.
        if (found && (found->movement.toStart || found->movement.toEnd))
            sum = {};
        if (found) {
            sum.rows += found->movement.rows;
            sum.pages += found->movement.pages;
            sum.toStart = sum.toStart || found->movement.toStart;
            sum.toEnd = sum.toEnd || found->movement.toEnd;
        }
        bytes.remove(0, found ? static_cast<int>(qstrlen(found->bytes)) : 1);
    }
    return sum;
}

void ScrollKeys::begin()
{
    termios settings {};
    if (m_former || !isInForeground() || tcgetattr(STDIN_FILENO, &settings) != 0)
        return;
    m_former = settings;
    settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    settings.c_cc[VMIN] = 0;
    settings.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &settings);
}

void ScrollKeys::leave()
{
    if (m_former && isInForeground())
        tcsetattr(STDIN_FILENO, TCSANOW, &*m_former);
    m_former.reset();
}

Movement ScrollKeys::take()
{
    pollfd input = { STDIN_FILENO, POLLIN, 0 };
    while (m_former && isInForeground() && poll(&input, 1, 0) > 0 && (input.revents & POLLIN)) {
        char bytes[64];
        const ssize_t count = read(STDIN_FILENO, bytes, sizeof bytes);
        if (count <= 0)
            break;
        m_pending.append(bytes, static_cast<int>(count));
    }
    return movementOf(m_pending);
}

} // namespace dx4::cli
