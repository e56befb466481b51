// SPDX-License-Identifier: MIT
// Asks which configuration is to be opened.
#include "panel/connect/file_sheet.h"

#include "panel/widgets/flat_button.h"
#include "panel/widgets/look.h"

#include <QFileInfo>
#include <QGridLayout>
#include <QLineEdit>
#include <QVBoxLayout>

#include <algorithm>

namespace dx4::panel {

FileSheet::FileSheet(QWidget *page)
    : Sheet(tr("Open a configuration"), page)
    , m_path(new QLineEdit)
    , m_grid(new QGridLayout)
{
    m_path->setMinimumHeight(targetSize);
    m_path->setObjectName(QStringLiteral("path"));
    m_path->setAccessibleName(tr("File"));
    m_grid->setSpacing(targetGap);
    auto *commands = new QHBoxLayout;
    commands->setSpacing(targetGap);
    auto *cancel = new FlatButton(tr("Cancel"));
    auto *open = new FlatButton(tr("Open this path"));
    commands->addWidget(cancel, 1);
    commands->addWidget(open, 1);
    content()->addLayout(m_grid);
    content()->addStretch();
    content()->addWidget(m_path);
    content()->addLayout(commands);
    connect(cancel, &FlatButton::clicked, this, &Sheet::close);
    connect(open, &FlatButton::clicked, this, [this] { choose(m_path->text().trimmed()); });
    connect(m_path, &QLineEdit::returnPressed, open, &FlatButton::click);
}

void FileSheet::choose(const QString &file)
{
    close();
    Q_EMIT chosen(file);
}

void FileSheet::addFile(int place, const QString &file)
{
    const QString name = QFileInfo(file).fileName();
    auto *button = new FlatButton(
        fontMetrics().elidedText(name, Qt::ElideMiddle, width() / columns - 4 * targetGap));
    button->setObjectName(QStringLiteral("offered"));
    button->setAccessibleName(file);
    button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_grid->addWidget(button, place / columns, place % columns);
    button->show(); // the sheet is open already
    connect(button, &FlatButton::clicked, this, [this, file] { choose(file); });
}

void FileSheet::ask(const QString &current, const QStringList &files)
{
    const auto old = findChildren<FlatButton *>(QStringLiteral("offered"));
    for (FlatButton *button : old) {
        m_grid->removeWidget(button);
        button->hide();
        button->deleteLater(); // it may be the one whose click is under way
    }
    m_path->setText(current);
    open();
    const int count = std::min(static_cast<int>(files.size()), mostFiles);
    for (int i = 0; i < count; ++i)
        addFile(i, files.at(i));
}

} // namespace dx4::panel
