// SPDX-License-Identifier: MIT
// What asks something, inside the window.
#pragma once

#include <QWidget>

class QLabel;
class QVBoxLayout;

namespace dx4::panel {

/// Covers the page that it belongs to, and nothing else: what stands beside the page stays in
/// reach, the stop above all. What lies below it cannot be used meanwhile, by keyboard neither.
class Sheet : public QWidget {
    Q_OBJECT

public:
    /// @param page  what it covers
    Sheet(const QString &title, QWidget *page);

    void setTitle(const QString &title);

    void open();
    void close();
    bool isOpen() const { return isVisibleTo(parentWidget()); }

Q_SIGNALS:
    void closed();

protected:
    /// Where the content goes.
    QVBoxLayout *content() const { return m_content; }

    /// How much larger than on the smallest screen its texts are, by the font it was given.
    double textScale() const;

    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void setBelowEnabled(bool isEnabled);
    bool isAnotherOpen() const;

    QVBoxLayout *m_content;
    QLabel *m_title;
};

} // namespace dx4::panel
