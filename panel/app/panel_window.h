// SPDX-License-Identifier: MIT
// The window: pages one tap apart, and the stop in reach of each.
#pragma once

#include "panel/pages/drives_page.h"
#include "panel/widgets/stop_button.h"

#include <QTimer>

class QLabel;
class QStackedWidget;

namespace dx4::panel {

class ClosingSheet;

class PanelWindow : public QWidget {
    Q_OBJECT

public:
    /// @param line  outlives the window
    /// @param now   the steady clock
    PanelWindow(PanelLine &line, std::function<host::Duration()> now, QWidget *parent = nullptr);

    /// Keeps itself up to date: 10 times a second, twice when nobody has touched it for a minute.
    void start();

    /// Takes what the line knows now.
    void refresh();

    int pageCount() const;
    void openPage(int index);

    /// Takes over a page, with its button at the end of the bar.
    ///
    /// @param name  on the button
    void addPage(Page *page, const QString &name);

    /// Takes over what stands above every page; it is kept up to date whatever page is shown, and
    /// hides itself where it has nothing to say.
    void setBanner(Page *banner);

    /// What one waits between two looks now, ms.
    int interval() const;

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fillStrip();
    void showMessage();
    void sizeStrip();
    void placeStop();
    Page *pageAt(int index) const;
    double scale() const;

    PanelLine &m_line;
    const std::function<host::Duration()> m_now;
    host::Duration m_touchedAt;
    QTimer m_timer;
    QStackedWidget *m_pages;
    QWidget *m_strip; // below the pages: message, page buttons and stop
    Page *m_banner = nullptr;
    QLabel *m_message;
    QWidget *m_bar;
    ClosingSheet *m_closing;
    StopButton *m_stop;
    bool m_mayClose = false;
};

} // namespace dx4::panel
