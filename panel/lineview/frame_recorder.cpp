// SPDX-License-Identifier: MIT
// Frames of the line into a file, on a thread of its own.
#include "panel/lineview/frame_recorder.h"

#include "cli/line/recording.h"

#include <QFileInfo>

#include <utility>

namespace dx4::panel {
namespace {

constexpr std::chrono::milliseconds lookInterval(200);

/// The line's clock, whose distance to the time of day the tap knows once a frame has passed.
host::Duration lineNow(const host::FrameTap &tap)
{
    const quint64 next = tap.next();
    if (next == 0)
        return host::steadyNow(); // that of every real line
    const auto wall = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<host::Duration>(wall) - tap.since(next).wallClockOffset;
}

} // namespace

FrameRecorder::FrameRecorder(std::shared_ptr<const host::FrameTap> tap)
    : m_tap(std::move(tap))
{
}

FrameRecorder::~FrameRecorder()
{
    end();
    join();
}

void FrameRecorder::begin(const QString &file, bool mayReplace)
{
    if (isBusy())
        return;
    join();
    m_isEnding = false;
    m_state = { Stage::Recording, file, 0, 0, {} };
    m_thread = std::thread(
        [this, file, mayReplace, next = m_tap->next()] { run(file, mayReplace, next); });
}

void FrameRecorder::end()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_state.stage == Stage::Recording)
        m_state.stage = Stage::Ending;
    m_isEnding = true;
    m_changed.notify_all();
}

FrameRecorder::State FrameRecorder::state() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_state;
}

bool FrameRecorder::isBusy() const
{
    const Stage stage = state().stage;
    return stage == Stage::Recording || stage == Stage::Ending;
}

void FrameRecorder::join()
{
    if (m_thread.joinable())
        m_thread.join();
}

void FrameRecorder::setState(const State &state)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const bool isEnding = m_state.stage == Stage::Ending && state.stage == Stage::Recording;
    m_state = state;
    if (isEnding)
        m_state.stage = Stage::Ending;
}

/// @return whether it goes on
bool FrameRecorder::waitForMore()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return !m_changed.wait_for(lock, lookInterval, [this] { return m_isEnding; });
}

void FrameRecorder::run(const QString &file, bool mayReplace, quint64 next)
{
    State state { Stage::Recording, file, 0, 0, {} };
    if (!mayReplace && QFileInfo::exists(file)) {
        state.stage = Stage::Exists;
        return setState(state);
    }
    cli::Recording recording(file);
    bool isGood = recording.canBegin(true) && recording.begin(lineNow(*m_tap));
    for (bool goesOn = true; isGood && goesOn;) {
        goesOn = waitForMore();
        const host::TappedFrames taken = m_tap->since(next);
        next = taken.next;
        isGood = recording.add(taken.frames);
        state.frames = recording.frames();
        state.missed += taken.missed;
        setState(state);
    }
    isGood = isGood && recording.end();
    state.stage = isGood ? Stage::Ended : Stage::Failed;
    state.error = recording.error();
    setState(state);
}

} // namespace dx4::panel
