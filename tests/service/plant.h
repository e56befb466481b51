// SPDX-License-Identifier: MIT
// Stations on a line in memory, whose requests a test can hold up.
#pragma once

#include "host/service/doorbell.h"
#include "scripted_line.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

/// What a line and its test share. The stations belong to the thread that runs the line, and to the
/// test as long as that thread is held, has not started or has ended.
class Plant {
public:
    explicit Plant(const dx4::host::LineSettings &settings);

    /// From now on each request waits until it is let go.
    void hold();

    /// Waits until a request is held.
    void awaitHeld();

    /// Lets so many requests go; those behind them are held.
    void letGo(int count);

    /// Holds nothing any more.
    void release();

    /// Waits until such a request has been sent, after those of the earlier calls.
    void awaitSent(const QByteArray &request);

    /// Called with each request that is about to be sent.
    void pass(const QByteArray &request);

    /// How a request waits.
    void setWaits(dx4::host::Waits &waits);

    ScriptedLine stations;
    std::vector<dx4::host::Duration> sendTimes; ///< when each request began
    std::atomic<bool> isRefusedToOpen { false }; ///< open() fails
    std::function<void()> failure; ///< called with each request that goes; may throw
    std::function<void()> turn; ///< lets the line go on where the test has its thread; else null

private:
    void await(std::unique_lock<std::mutex> &lock, const std::function<bool()> &isSo);

    std::mutex m_mutex;
    std::unique_ptr<dx4::host::Doorbell> m_gate; // rung when requests may go
    std::condition_variable m_changed;
    bool m_isHolding = false;
    int m_allowed = 0;
    int m_held = 0;
    std::deque<QByteArray> m_sent; // not awaited yet
};

/// The line of a plant.
class PlantLine : public dx4::host::Line {
public:
    explicit PlantLine(std::shared_ptr<Plant> plant);

    bool open(QString *error) override;
    void close() override;
    bool isOpen() const override;
    const dx4::host::LineSettings &settings() const override;
    dx4::host::Duration now() const override;
    bool send(const QByteArray &bytes) override;
    QByteArray receive(int count, dx4::host::Duration deadline) override;
    int discardInput() override;
    bool awaitSilence(dx4::host::Duration gap, dx4::host::Duration deadline) override;
    void setWaits(dx4::host::Waits &waits) override { m_plant->setWaits(waits); }

private:
    dx4::host::MemoryLine &line() const { return m_plant->stations.line; }

    std::shared_ptr<Plant> m_plant;
};
