// SPDX-License-Identifier: MIT
// The page of ports, plan and configuration.
#pragma once

#include "panel/connect/connect_view.h"
#include "panel/connect/file_sheet.h"
#include "panel/lineview/line_table.h"
#include "panel/widgets/flat_button.h"
#include "panel/widgets/page.h"

class QBoxLayout;
class QLabel;
class QPlainTextEdit;
class QStackedWidget;

namespace dx4::panel {

class ConnectPage : public Page {
    Q_OBJECT

public:
    enum View { Ports, Plan, Configuration };

    /// @param view  outlives the page
    explicit ConnectPage(ConnectView &view, QWidget *parent = nullptr);

    void refresh() override;
    void setScale(double scale) override;
    void open(View view);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    FlatButton *makeButton(const QString &text, const char *name);
    QBoxLayout *makeButtons();
    QWidget *makeConfiguration();
    void turn(int pages);
    void showTexts();
    void showButtons();
    QString headText() const;

    ConnectView &m_view;
    QLabel *m_head;
    QVector<FlatButton *> m_tabs;
    FlatButton *m_up = nullptr;
    FlatButton *m_down = nullptr;
    FlatButton *m_open = nullptr;
    FlatButton *m_take = nullptr;
    QStackedWidget *m_body;
    LineTable *m_ports = nullptr;
    LineTable *m_plan = nullptr;
    QPlainTextEdit *m_detail = nullptr;
    FileSheet *m_sheet = nullptr;
};

} // namespace dx4::panel
