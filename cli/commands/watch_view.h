// SPDX-License-Identifier: MIT
// How watched registers are shown: a live table, plain lines, CSV or JSON.
#pragma once

#include "cli/console/exit_code.h"
#include "cli/console/terminal.h"
#include "cli/console/time_stamp.h"
#include "cli/registers/watch_list.h"
#include "host/exchange/counters.h"

#include <memory>
#include <optional>

namespace dx4::cli {

/// What a user wants to see.
struct WatchStyle {
    enum class Form { Text, Csv, Json };

    Form form = Form::Text;
    bool clock = false; ///< times of day in place of seconds since the start
    std::optional<host::Duration> sample = {}; ///< all values at once, each time this has passed
    int seconds = 0; ///< of a show, whose progress stands below the table; 0: it is none
};

/// One way to show them.
class WatchView {
public:
    WatchView() = default;
    virtual ~WatchView() = default;
    WatchView(const WatchView &) = delete;
    WatchView &operator=(const WatchView &) = delete;

    /// Called after each exchange.
    ///
    /// @param now, elapsed  the line's clock, and the time since the start
    virtual void values(WatchList &list, const host::CounterSet &counters, host::Duration now,
                        host::Duration elapsed) = 0;

    /// The line broke, or is back, or there is something else to know of it.
    virtual void line(const QString &text) = 0;
    virtual void end(WatchList &list, const host::CounterSet &counters, host::Duration now,
                     host::Duration elapsed) = 0;

    /// The table where the terminal can be drawn over and text was asked for, else a line for every
    /// value that became another, failed, grew stale or came back. Samples are rows of a table in
    /// CSV, also where text was asked for, or objects in JSON.
    ///
    /// @param values  that will be shown
    static std::unique_ptr<WatchView> create(const WatchStyle &style, const Terminal &terminal,
                                             const QVector<WatchRow> &values);
};

/// What the views have in common that print one line, or one object, after the other.
class RunningView : public WatchView {
public:
    explicit RunningView(const WatchStyle &style)
        : m_form(style.form)
        , m_stamp(style.clock)
    {
    }

    void line(const QString &text) override { note(text); }

protected:
    bool isJson() const { return m_form == WatchStyle::Form::Json; }
    void printEvent(const char *event, const Facts &facts, host::Duration elapsed) const;

    /// How much was passed over, such as "3 changes"; nothing where that is 0.
    void printUnshown(int count, const char *one, const char *many, host::Duration elapsed) const;

    WatchStyle::Form m_form;
    TimeStamp m_stamp;
};

/// A row with a column per register, or an object, for every moment that the style asks for.
///
/// Moments are counted from the start and do not drift. One that passes while a request is on the
/// line shows what is known when the request has ended. A value that is not known, failed or is
/// stale has an empty cell, or null: nobody shall draw a curve through it.
std::unique_ptr<WatchView> sampleView(const WatchStyle &style, const QVector<WatchRow> &values);

} // namespace dx4::cli
