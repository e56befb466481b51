// SPDX-License-Identifier: MIT
// A page of the line on counters and frames that a test makes up.
#pragma once

#include "panel_fixture.h"

#include "panel/lineview/line_page.h"

/// Counters that grow as a test says.
class MadeUpCounters {
public:
    /// So many requests to a station ended so; read is D 0 to 7, written is CW.
    void count(int station, dx4::host::ReplyCause cause, int times, int delayMs = 7,
               bool isWrite = false, int exceptionCode = 2);

    /// As they are after so much time of the line.
    dx4::host::LineCounters after(dx4::host::Duration span) const { return { m_counts, span }; }

private:
    dx4::host::CounterSet m_counts;
};

/// The page in its window, over three drives.
struct MadeUpLinePage {
    explicit MadeUpLinePage(int drives = 3, QSize size = { 800, 480 });

    /// Gives the view what was counted, after so much time of the line.
    void counted(dx4::host::Duration span);

    /// A request of station `station` and what came for it; each 20 ms after the one before.
    ///
    /// @param reply  in hex without CRC; empty: nothing came
    void passed(int station, const char *reply);

    /// Bytes that come instead of a reply, as they are.
    void passedBytes(int station, const QByteArray &reply);

    void show();

    MadeUpPanel panel;
    std::shared_ptr<dx4::host::FrameTap> tap = std::make_shared<dx4::host::FrameTap>();
    MadeUpCounters counters;
    int asked = 0; ///< how often counters were asked for
    dx4::panel::LineView view;
    dx4::panel::LinePage *page;

private:
    dx4::host::Duration m_frameTime { 0 };
};

/// A plant of three drives of which the third has a bad cable, with frames of each.
void playBadCable(MadeUpLinePage &page);
