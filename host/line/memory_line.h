// SPDX-License-Identifier: MIT
// A line in memory: a function answers, and time passes only when somebody waits.
#pragma once

#include "host/line/line.h"

#include <QVector>

#include <deque>
#include <functional>

namespace dx4::host {

/// The line for tests and benchmarks. Every byte takes its character time, on a virtual clock that
/// starts at 0.
class MemoryLine : public Line {
public:
    /// Bytes that start to arrive `delay` after the end of the request.
    struct Answer {
        QByteArray bytes;
        Duration delay { 0 };
    };

    /// Called once per frame sent. Silence is an empty Answer.
    using Responder = std::function<Answer(const QByteArray &request)>;

    /// @param responder  not null: std::invalid_argument is thrown
    explicit MemoryLine(Responder responder, const LineSettings &settings = LineSettings());

    bool open(QString *error) override;
    void close() override;
    bool isOpen() const override { return m_open; }
    const LineSettings &settings() const override { return m_settings; }
    Duration now() const override { return m_now; }
    bool send(const QByteArray &bytes) override;
    QByteArray receive(int count, Duration deadline) override;
    int discardInput() override;
    bool awaitSilence(Duration gap, Duration deadline) override;

    /// Lets bytes arrive that nobody asked for, `delay` from now.
    void inject(const QByteArray &bytes, Duration delay = Duration { 0 });

    /// From now on a frame that is sent and bytes that arrive meanwhile destroy each other, as on a
    /// pair of wires that all share: no station hears the frame, and the bytes are lost.
    void letFramesCollide() { m_collides = true; }

    /// Pulls the plug: the line closes and cannot be opened until plugIn().
    void unplug();
    void plugIn();

    /// Lets time pass.
    void advance(Duration span) { m_now += span; }

    /// Every frame sent so far.
    const QVector<QByteArray> &sent() const { return m_sent; }

private:
    struct Arrival {
        Duration at;
        char byte;
    };

    void schedule(const QByteArray &bytes, Duration start);
    bool dropArrivalsUntil(Duration end);

    Responder m_responder;
    LineSettings m_settings;
    bool m_open = true;
    bool m_pluggedIn = true;
    bool m_collides = false;
    Duration m_now { 0 };
    Duration m_lastActivity;
    std::deque<Arrival> m_arrivals; // ascending by time
    QVector<QByteArray> m_sent;
};

} // namespace dx4::host
