// SPDX-License-Identifier: MIT
// A panel on a line that a test makes up, with a clock of its own.
#pragma once

#include "panel/app/panel_window.h"

#include <QApplication>

#include <memory>
#include <vector>

/// An application without a screen, with a font and colours that are the same everywhere.
class ScreenInMemory {
public:
    ScreenInMemory(int &argc, char **argv);

private:
    std::unique_ptr<QApplication> m_application;
};

/// Drives as a test says they are. Time stands still until advance().
class MadeUpLine {
public:
    explicit MadeUpLine(int drives = 3);

    dx4::panel::Clock clock();
    dx4::panel::LinePort port();

    /// What a register was read as, just now.
    void read(int station, const char *type, int address, quint16 value);

    /// All registers of a drive that turns at 49.98 Hz of 50.
    void readRunning(int station);
    void readStanding(int station);

    /// Gives the panel what was read as the newest snapshot.
    void publish();

    /// Lets time pass; values get older, and no snapshot is taken.
    void advance(dx4::host::Duration span);

    dx4::host::RegisterValue *find(int station, const char *type, int address);

    dx4::host::Config config;
    dx4::host::ControlConfig control;
    dx4::host::LineSnapshot next; ///< what publish() gives
    std::vector<dx4::host::WriteWish> writes; ///< with ids from 1000 on
    int stops = 0; ///< with ids from 1 on
    int nextWrite = 1000; ///< 0: the line is closed

private:
    std::shared_ptr<const dx4::host::LineSnapshot> m_published;
    dx4::host::Duration m_now = std::chrono::hours(1);
    QDateTime m_utc;
};

/// A window on such a line.
struct MadeUpPanel {
    explicit MadeUpPanel(int drives = 3, QSize size = { 800, 480 });

    /// Publishes what was read and draws it.
    void show();

    MadeUpLine made;
    dx4::panel::PanelLine line;
    dx4::panel::PanelWindow window;
};

/// How a write of `id` ended.
dx4::host::WriteOutcome ended(int id, dx4::host::WriteEnd end, const char *text = "",
                              int station = 1);
