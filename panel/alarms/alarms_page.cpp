// SPDX-License-Identifier: MIT
// The page of the alarms: what is, and what was.
#include "panel/alarms/alarms_page.h"

#include "panel/alarms/event_save_sheet.h"
#include "panel/alarms/filter_sheet.h"
#include "panel/alarms/text_sheet.h"
#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QDateTime>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QVBoxLayout>

#include <utility>

namespace dx4::panel {
namespace {

constexpr int headSize = 14; // px, as that below at a scale of 1
constexpr int buttonSize = 16;

QString proposedFile(journal::Time now)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString day = QDateTime::fromMSecsSinceEpoch(now).toString(QStringLiteral("yyyy-MM-dd"));
    return QDir(folder).filePath(QStringLiteral("history-%1.csv").arg(day));
}

} // namespace

AlarmsPage::AlarmsPage(AlarmsPort port, QWidget *parent)
    : Page(parent)
    , m_port(std::move(port))
    , m_alarms(m_port.watch->book(), m_port.words)
    , m_history(m_port.read, m_port.words)
    , m_head(new QLabel)
    , m_lists(new QStackedWidget)
    , m_alarmList(new RowList(m_alarms))
    , m_historyList(new RowList(m_history))
    , m_bar(new QWidget)
    , m_filterSheet(nullptr)
    , m_saveSheet(nullptr)
    , m_textSheet(nullptr)
{
    setObjectName(QStringLiteral("alarms"));
    m_head->setObjectName(QStringLiteral("head"));
    m_head->setTextFormat(Qt::PlainText);
    m_head->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_lists->addWidget(m_alarmList);
    m_lists->addWidget(m_historyList);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(targetGap, targetGap, targetGap, 0);
    column->setSpacing(targetGap);
    auto *upper = new QVBoxLayout;
    upper->setSpacing(targetGap / 2);
    upper->addWidget(m_head);
    upper->addWidget(m_lists, 1);
    column->addLayout(upper, 1);
    column->addWidget(makeBar());
    m_filterSheet = new FilterSheet(m_port.words, m_port.stations, this);
    m_saveSheet = new EventSaveSheet(tr("Save the history as a table (CSV)"), this);
    m_textSheet = new TextSheet(tr("Details"), this);
    connect(m_alarmList, &RowList::chosenChanged, this, &AlarmsPage::keepChosen);
    connect(m_historyList, &RowList::chosenChanged, this, [this] { showButtons(); });
    connect(&m_history, &HistoryModel::readEnded, this, &AlarmsPage::showEmptyTexts);
    connect(m_filterSheet, &FilterSheet::entered, this, &AlarmsPage::take);
    showHistory(false);
    setScale(1.0);
}

FlatButton *AlarmsPage::addButton(const char *name, const QString &text)
{
    auto *button = new FlatButton(text);
    button->setObjectName(QString::fromLatin1(name));
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_bar->layout()->addWidget(button);
    return button;
}

QWidget *AlarmsPage::makeBar()
{
    auto *row = new QHBoxLayout(m_bar);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(targetGap);
    m_now = addButton("now", tr("Now"));
    m_past = addButton("past", tr("History"));
    m_acknowledge = addButton("acknowledge", tr("Acknowledge"));
    m_acknowledgeShown = addButton("acknowledge shown", tr("Acknowledge all shown"));
    m_filter = addButton("filter", tr("Filter..."));
    m_csv = addButton("csv", tr("Save as CSV..."));
    m_details = addButton("details", tr("Details..."));
    for (FlatButton *button : { m_now, m_past })
        button->setCheckable(true);
    connect(m_now, &FlatButton::clicked, this, [this] { showHistory(false); });
    connect(m_past, &FlatButton::clicked, this, [this] { showHistory(true); });
    connect(m_acknowledge, &FlatButton::clicked, this, &AlarmsPage::acknowledgeChosen);
    connect(m_acknowledgeShown, &FlatButton::clicked, this, &AlarmsPage::acknowledgeShown);
    connect(m_filter, &FlatButton::clicked, this,
            [this] { m_filterSheet->ask(m_history.filter()); });
    connect(m_csv, &FlatButton::clicked, this, &AlarmsPage::askWhereTo);
    connect(m_details, &FlatButton::clicked, this, &AlarmsPage::tellDetails);
    return m_bar;
}

void AlarmsPage::showHistory(bool isWanted)
{
    m_isHistory = isWanted;
    m_lists->setCurrentIndex(isWanted ? 1 : 0);
    if (isWanted && m_port.read)
        m_history.show(m_history.filter(), m_port.now());
    refresh();
}

void AlarmsPage::take(const HistoryFilter &filter)
{
    m_history.show(filter, m_port.now());
    refresh();
}

void AlarmsPage::refresh()
{
    m_alarms.refresh(m_port.now());
    m_alarmList->choose(m_alarms.rowOf(m_chosen), RowList::View::Stays);
    showEmptyTexts();
    showButtons();
}

void AlarmsPage::keepChosen(int row)
{
    if (row >= 0)
        m_chosen = m_alarms.alarm(row).key;
    showButtons();
}

void AlarmsPage::showEmptyTexts()
{
    m_alarmList->setEmptyText(tr("No alarm is active, and all were acknowledged."));
    QString text = tr("The journal has no such event.");
    if (!m_port.read)
        text = tr("No journal is kept.");
    else if (m_history.isReading())
        text = tr("Reading.");
    else if (!m_history.trouble().isEmpty())
        text = tr("The journal cannot be read: %1").arg(m_history.trouble());
    m_historyList->setEmptyText(text);
    const AlarmBook &book = m_port.watch->book();
    const QString filter = FilterSheet::textOf(m_history.filter(), m_port.words);
    const QString shown = filter.isEmpty() ? tr("all events") : filter;
    QString head =
        tr("%1 not acknowledged, %2 active").arg(book.unacknowledged()).arg(book.active());
    if (book.dropped() > 0)
        head = tr("%1; %2 more are in the history only").arg(head).arg(book.dropped());
    const QString told = m_isHistory ? tr("Newest first: %1").arg(shown) : head;
    m_head->setText(m_head->fontMetrics().elidedText(told, Qt::ElideRight, m_head->width()));
    m_head->setAccessibleName(told);
    setTextColour(*m_head, lookOf(palette()).faded);
}

void AlarmsPage::showButtons()
{
    m_now->setChecked(!m_isHistory);
    m_past->setChecked(m_isHistory);
    for (FlatButton *button : { m_acknowledge, m_acknowledgeShown })
        button->setVisible(!m_isHistory);
    for (FlatButton *button : { m_filter, m_csv })
        button->setVisible(m_isHistory);
    const int row = m_alarmList->chosen();
    m_acknowledge->setEnabled(row >= 0 && isUnacknowledged(m_alarms.alarm(row)));
    bool isAnyShown = false;
    for (int i = 0; i < m_alarmList->shownRows(); ++i)
        isAnyShown = isAnyShown || isUnacknowledged(m_alarms.alarm(m_alarmList->firstShown() + i));
    m_acknowledgeShown->setEnabled(isAnyShown);
    m_filter->setEnabled(m_port.read != nullptr);
    m_csv->setEnabled(m_port.save != nullptr);
    m_details->setEnabled(list().chosen() >= 0);
}

void AlarmsPage::acknowledgeChosen()
{
    const int row = m_alarmList->chosen();
    if (row >= 0)
        m_port.watch->acknowledge({ m_alarms.alarm(row).key });
    refresh();
}

void AlarmsPage::acknowledgeShown()
{
    QVector<AlarmKey> keys;
    for (int i = 0; i < m_alarmList->shownRows(); ++i)
        keys.append(m_alarms.alarm(m_alarmList->firstShown() + i).key);
    m_port.watch->acknowledge(keys);
    refresh();
}

void AlarmsPage::askWhereTo()
{
    m_saveSheet->ask(proposedFile(m_port.now()),
                     [this](const QString &file, bool mayReplace,
                            const std::function<void(const SaveEnd &)> &then) {
                         m_port.save(m_history.query(), file, mayReplace, then);
                     });
}

void AlarmsPage::tellDetails()
{
    const int row = list().chosen();
    if (row < 0)
        return;
    if (m_isHistory)
        return m_textSheet->tell(m_history.index(row).data(FullTextRole).toString());
    QString text = m_alarms.index(row).data(FullTextRole).toString();
    const QString snapshot =
        m_port.snapshotText ? m_port.snapshotText(m_alarms.alarm(row)) : QString();
    if (!snapshot.isEmpty())
        text += QLatin1Char('\n') + snapshot;
    m_textSheet->tell(text);
}

void AlarmsPage::setScale(double scale)
{
    const auto at = [scale](int size) { return static_cast<int>(size * scale); };
    m_head->setFont(sized(font(), at(headSize)));
    for (QWidget *sheet :
         { static_cast<QWidget *>(m_filterSheet), static_cast<QWidget *>(m_saveSheet),
           static_cast<QWidget *>(m_textSheet) })
        sheet->setFont(sized(font(), at(buttonSize)));
    m_alarmList->setScale(scale);
    m_historyList->setScale(scale);
    for (FlatButton *button :
         { m_now, m_past, m_acknowledge, m_acknowledgeShown, m_filter, m_csv, m_details }) {
        button->setFont(sized(font(), at(buttonSize)));
        button->setMinimumHeight(at(targetSize));
    }
}

} // namespace dx4::panel
