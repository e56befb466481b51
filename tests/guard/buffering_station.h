// SPDX-License-Identifier: MIT
// A station that keeps what it is asked while it is busy, and answers in order.
#pragma once

#include "scripted_line.h"

#include <algorithm>
#include <deque>
#include <functional>

/// Unlike those of a ScriptedLine, its replies never overtake each other.
class BufferingStation {
public:
    /// Takes a frame and gives what arrives instead.
    using Change = std::function<QByteArray(const QByteArray &frame)>;

    explicit BufferingStation(const dx4::host::LineSettings &settings)
        : line([this](const QByteArray &request) { return hear(request); }, settings)
    {
    }

    /// Lets bytes arrive behind all that was said before.
    void say(const QByteArray &bytes, dx4::host::Duration delay)
    {
        const dx4::host::Duration start = std::max(busyUntil, line.now()) + delay;
        busyUntil = start + line.settings().wireTime(static_cast<int>(bytes.size()));
        line.inject(bytes, start - line.now());
    }

    dx4::host::MemoryLine line;
    ScriptedLine station; ///< whose registers it has
    dx4::host::Duration usual { 0 }; ///< that it takes for an answer
    std::deque<dx4::host::Duration> delays; ///< that it takes for the next ones
    std::deque<Change> replies; ///< changes of the next ones
    std::deque<Change> echoes; ///< changes of the next ones
    bool adapterEchoes = false;
    bool isDead = false;

private:
    template <typename Item> static Item next(std::deque<Item> &items, Item usual)
    {
        if (items.empty())
            return usual;
        const Item first = items.front();
        items.pop_front();
        return first;
    }

    dx4::host::MemoryLine::Answer hear(const QByteArray &request)
    {
        const Change same = [](const QByteArray &frame) { return frame; };
        if (adapterEchoes)
            say(next(echoes, same)(request), dx4::host::Duration { 0 });
        if (isDead)
            return {};
        const dx4::host::Duration delay = next(delays, usual);
        say(next(replies, same)(station.answer(request)), delay);
        return {};
    }

    dx4::host::Duration busyUntil { 0 };
};

/// What arrives instead of a frame.
inline BufferingStation::Change replacedBy(const QByteArray &bytes)
{
    return [bytes](const QByteArray &) { return bytes; };
}
