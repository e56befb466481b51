// SPDX-License-Identifier: MIT
// Asks where frames are recorded to.
#include "panel/lineview/record_sheet.h"

#include "panel/widgets/look.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <utility>

namespace dx4::panel {
namespace {

constexpr const char *mountTable = "/proc/self/mounts";

/// Where desktops put what is plugged in.
bool isPluggedIn(const QString &folder)
{
    return folder.startsWith(QLatin1String("/media/"))
        || folder.startsWith(QLatin1String("/run/media/"));
}

/// Blanks in a folder stand as "\040" in the table.
QString unescaped(QString folder)
{
    return folder.replace(QLatin1String("\\040"), QLatin1String(" "));
}

} // namespace

QVector<Place> recordPlaces()
{
    QVector<Place> places { { RecordSheet::tr("Home"), QDir::homePath() } };
    QFile table(QString::fromLatin1(mountTable));
    if (!table.open(QIODevice::ReadOnly))
        return places;
    const QStringList lines = QString::fromLocal8Bit(table.readAll()).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const QString folder = unescaped(line.section(QLatin1Char(' '), 1, 1));
        if (isPluggedIn(folder) && places.size() < RecordSheet::mostPlaces)
            places.append({ QFileInfo(folder).fileName(), folder });
    }
    return places;
}

RecordSheet::RecordSheet(std::function<QVector<Place>()> places, QWidget *page)
    : Sheet(tr("Record frames to a file"), page)
    , m_places(std::move(places))
    , m_file(new QLineEdit)
    , m_placeRow(new QWidget)
    , m_question(new QLabel)
    , m_record(new FlatButton(tr("Record")))
    , m_cancel(new FlatButton(tr("Cancel")))
{
    m_file->setMinimumHeight(targetSize);
    m_file->setObjectName(QStringLiteral("file"));
    m_file->setAccessibleName(tr("File"));
    m_question->setWordWrap(true);
    m_question->setTextFormat(Qt::PlainText);
    m_question->setObjectName(QStringLiteral("question"));
    auto *row = new QHBoxLayout(m_placeRow);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(targetGap);
    auto *commands = new QHBoxLayout;
    commands->setSpacing(targetGap);
    commands->addWidget(m_cancel, 1);
    commands->addWidget(m_record, 1);
    content()->addWidget(m_file);
    content()->addWidget(m_placeRow);
    content()->addWidget(m_question);
    content()->addStretch();
    content()->addLayout(commands);
    connect(m_cancel, &FlatButton::clicked, this, &Sheet::close);
    connect(m_file, &QLineEdit::textEdited, this, [this] { showReplacing(false); });
    connect(m_record, &FlatButton::clicked, this, [this] {
        close();
        Q_EMIT wanted(file(), m_isReplacing);
    });
}

void RecordSheet::addPlaces()
{
    const auto old = m_placeRow->findChildren<FlatButton *>();
    for (FlatButton *button : old) {
        m_placeRow->layout()->removeWidget(button);
        button->hide();
        button->deleteLater();
    }
    for (const Place &place : m_places()) {
        auto *button = new FlatButton(place.name);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        m_placeRow->layout()->addWidget(button);
        button->show();
        connect(button, &FlatButton::clicked, this,
                [this, folder = place.folder] { setPlace(folder); });
    }
}

void RecordSheet::ask(const QDateTime &now)
{
    addPlaces();
    const QString name = now.toString(QStringLiteral("'line-'yyyyMMdd-HHmmss'.pcap'"));
    const QString folder =
        m_file->text().isEmpty() ? QDir::homePath() : QFileInfo(m_file->text()).path();
    m_file->setText(folder + QLatin1Char('/') + name);
    showReplacing(false);
    open();
    m_record->setFocus();
}

void RecordSheet::askToReplace(const QString &file)
{
    addPlaces();
    m_file->setText(file);
    showReplacing(true);
    open();
    m_cancel->setFocus();
}

void RecordSheet::setPlace(const QString &folder)
{
    m_file->setText(folder + QLatin1Char('/') + QFileInfo(m_file->text()).fileName());
    showReplacing(false);
}

void RecordSheet::showReplacing(bool isReplacing)
{
    m_isReplacing = isReplacing;
    m_question->setText(isReplacing ? tr("This file is there already. Name another one, or replace "
                                         "it: what it holds is lost.")
                                    : tr("The file opens in protocol analysers, and here again."));
    m_record->setText(isReplacing ? tr("Replace it and record") : tr("Record"));
}

QString RecordSheet::file() const
{
    return m_file->text().trimmed();
}

} // namespace dx4::panel
