// SPDX-License-Identifier: MIT
// Work that waits for a disk, off the thread of the window.
#pragma once

#include <QObject>

#include <functional>
#include <memory>

namespace dx4::panel {

/// Done elsewhere; what it gives back is called on the thread of the window afterwards.
using Work = std::function<std::function<void()>()>;

/// Has work done; a test does it at once.
using Runner = std::function<void(Work)>;

/// A thread that does one piece of work after the other.
class Background : public QObject {
public:
    explicit Background(QObject *parent = nullptr);

    /// Waits for the work under way; what waits behind it is dropped, and nothing is called
    /// afterwards.
    ~Background() override;

    void run(Work work);

    /// The same as a function; this outlives it.
    Runner runner();

private:
    struct Thread;

    const std::unique_ptr<Thread> m_thread;
};

} // namespace dx4::panel
