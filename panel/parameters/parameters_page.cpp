// SPDX-License-Identifier: MIT
// The page of the parameters: read, compared, saved, and written where somebody holds a button.
#include "panel/parameters/parameters_page.h"

#include "panel/parameters/apply_sheet.h"
#include "panel/parameters/detail_sheet.h"
#include "panel/parameters/note_sheet.h"
#include "panel/parameters/save_sheet.h"
#include "panel/parameters/search_sheet.h"
#include "panel/parameters/source_sheet.h"
#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QHBoxLayout>
#include <QLabel>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int textSize = 16; // px, as those below at a scale of 1
constexpr int buttonSize = 44; // at least a target
constexpr int narrow = 76; // width of short words
constexpr int wide = 100; // width of "Apply 5..."
constexpr int sideWidth = 100; // of the buttons beside the table
constexpr int guardInterval = 250; // ms
constexpr host::Duration journalAge = std::chrono::seconds(10); // before it is read anew

int scaled(int size, double scale)
{
    return static_cast<int>(size * scale);
}

} // namespace

ParametersPage::ParametersPage(const ParametersSetup &setup, QWidget *parent)
    : Page(parent)
    , m_book(setup.port, setup.config, setup.clock)
    , m_restore(m_book, setup.standing)
    , m_files(setup.runner, setup.folder)
    , m_journal(setup.runner, setup.journal)
    , m_table(m_book, m_journal)
{
    setObjectName(QStringLiteral("parameters"));
    m_groups = new GroupBar;
    auto *right = new QVBoxLayout;
    right->setSpacing(targetGap);
    right->addLayout(makeTop());
    right->addLayout(makeMiddle(), 1);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(targetGap, targetGap, targetGap, 0);
    row->setSpacing(targetGap);
    row->addWidget(m_groups);
    row->addLayout(right, 1);
    makeSheets(setup.clock.steady);
    connectButtons();
    m_guard.setInterval(guardInterval);
    connect(&m_guard, &QTimer::timeout, &m_restore, &ParameterRestore::look);
    connect(&m_restore, &ParameterRestore::changed, this, [this] {
        if (m_restore.isRunning() != m_guard.isActive())
            m_restore.isRunning() ? m_guard.start() : m_guard.stop();
    });
    setScale(1.0);
}

QBoxLayout *ParametersPage::makeTop()
{
    auto *top = new QHBoxLayout;
    top->setSpacing(targetGap);
    for (const ParameterBook::Place place : { ParameterBook::First, ParameterBook::Second }) {
        m_sides[place] = new TwoLineButton;
        m_sides[place]->setObjectName(QStringLiteral("side %1").arg(place));
        top->addWidget(m_sides[place], 1);
    }
    m_read = new FlatButton(tr("Read"));
    m_save = new FlatButton(tr("Save..."));
    m_apply = new FlatButton(tr("Apply..."));
    for (FlatButton *button : { m_read, m_save, m_apply })
        top->addWidget(button);
    return top;
}

QBoxLayout *ParametersPage::makeMiddle()
{
    m_counts = new QLabel;
    m_counts->setObjectName(QStringLiteral("counts"));
    m_counts->setTextFormat(Qt::PlainText);
    m_view = new ParameterView(m_table);
    auto *column = new QVBoxLayout;
    column->setSpacing(0);
    column->addWidget(m_counts);
    column->addWidget(m_view, 1);
    auto *middle = new QHBoxLayout;
    middle->setSpacing(targetGap);
    middle->addLayout(column, 1);
    middle->addLayout(makeSide());
    return middle;
}

QBoxLayout *ParametersPage::makeSide()
{
    m_only = new FlatButton(tr("Only what differs"));
    m_only->setCheckable(true);
    m_only->setChecked(m_table.isOnlyDifferences());
    m_tickAll = new FlatButton(tr("Tick all"));
    m_find = new FlatButton(tr("Find..."));
    m_up = new FlatButton(tr("Up"));
    m_down = new FlatButton(tr("Down"));
    auto *side = new QVBoxLayout;
    side->setSpacing(targetGap);
    for (FlatButton *button : { m_only, m_tickAll, m_find })
        side->addWidget(button);
    // What one drive alone does not need leaves its place: nothing moves under a finger.
    for (FlatButton *button : { m_only, m_tickAll }) {
        QSizePolicy policy = button->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        button->setSizePolicy(policy);
    }
    side->addStretch(1);
    for (FlatButton *button : { m_up, m_down })
        side->addWidget(button);
    return side;
}

void ParametersPage::makeSheets(const std::function<host::Duration()> &now)
{
    m_source = new SourceSheet(m_book, m_files, this);
    m_saving = new SaveSheet(m_book, m_files, this);
    m_search = new SearchSheet(m_table, this);
    m_writing = new ApplySheet(m_restore, now, this);
    m_detail = new DetailSheet(m_book, m_table, m_journal, this);
    m_note = new NoteSheet(this);
    connect(m_source, &SourceSheet::failed, m_note, &NoteSheet::tell);
    connect(&m_book, &ParameterBook::failed, m_note, &NoteSheet::tell);
    connect(m_search, &SearchSheet::entered, this, [this](const QString &text) {
        if (!text.isEmpty()) {
            m_groups->choose(ParameterTable::allGroups);
            m_table.setGroup(ParameterTable::allGroups);
        }
        m_table.setSearch(text);
        refresh();
    });
}

void ParametersPage::connectButtons()
{
    for (const ParameterBook::Place place : { ParameterBook::First, ParameterBook::Second })
        connect(m_sides[place], &FlatButton::clicked, this,
                [this, place] { m_source->ask(place); });
    connect(m_groups, &GroupBar::chosen, this, [this](int group) {
        m_table.setSearch(QString());
        m_table.setGroup(group);
        refresh();
    });
    connect(m_read, &FlatButton::clicked, this, &ParametersPage::readOrCancel);
    connect(m_save, &FlatButton::clicked, this, [this] { m_saving->ask(savedPlace()); });
    connect(m_apply, &FlatButton::clicked, this, [this] { m_writing->ask(); });
    connect(m_only, &FlatButton::toggled, this, [this](bool isOn) {
        m_table.setOnlyDifferences(isOn);
        refresh();
    });
    connect(m_tickAll, &FlatButton::clicked, this, [this] {
        m_table.tickAll(!m_table.areAllTicked());
        refresh();
    });
    connect(m_find, &FlatButton::clicked, this, [this] { m_search->ask(); });
    for (const auto &[button, pages] : { std::pair(m_up, -1), std::pair(m_down, 1) })
        connect(button, &FlatButton::clicked, this, [this, pages = pages] {
            m_view->step(pages);
            refresh();
        });
    connect(m_view, &ParameterView::opened, m_detail, &DetailSheet::ask);
}

void ParametersPage::follow(const host::LineService &service)
{
    m_book.follow(service);
    m_restore.follow(service);
}

void ParametersPage::readOrCancel()
{
    if (m_book.isReading())
        m_book.cancel();
    else
        m_book.read();
    refresh();
}

/// The drive that is compared with something, else the only one.
ParameterBook::Place ParametersPage::savedPlace() const
{
    return m_book.side(ParameterBook::Second).kind == ParameterSide::Kind::Drive
        ? ParameterBook::Second
        : ParameterBook::First;
}

void ParametersPage::showSide(ParameterBook::Place place)
{
    const ParameterSide &side = m_book.side(place);
    const bool isThere = side.kind != ParameterSide::Kind::Nothing;
    const QString nothing =
        place == ParameterBook::First ? tr("Left: nothing") : tr("Right: nothing");
    const bool isOld = isThere && !side.isReading && !side.isFresh(m_book.now());
    m_sides[place]->setLines(isThere ? side.name : nothing, side.stateText(m_book.now()), isOld);
}

void ParametersPage::showButtons()
{
    const ParameterSide &saved = m_book.side(savedPlace());
    const bool isSavable =
        saved.kind == ParameterSide::Kind::Drive && !saved.isReading && !saved.set.values.isEmpty();
    const int ticked = static_cast<int>(m_book.ticked().values.size());
    m_read->setText(m_book.isReading() ? tr("Cancel") : tr("Read"));
    m_read->setEnabled(m_book.hasDrive());
    m_save->setEnabled(isSavable);
    m_apply->setText(m_restore.isRunning() ? tr("Writing...")
                         : ticked > 0      ? tr("Apply %1...").arg(ticked)
                                           : tr("Apply..."));
    m_apply->setEnabled(ticked > 0 || m_restore.isRunning());
    m_only->setVisible(m_book.isCompared());
    m_tickAll->setVisible(m_book.isCompared());
    m_tickAll->setText(m_table.areAllTicked() ? tr("Untick all") : tr("Tick all"));
    m_tickAll->setEnabled(m_table.tickable() > 0);
    m_find->setText(m_table.search().isEmpty() ? tr("Find...")
                                               : tr("Find: %1").arg(m_table.search()));
    m_up->setEnabled(m_view->canStep(-1));
    m_down->setEnabled(m_view->canStep(1));
}

QString ParametersPage::emptyText() const
{
    if (!m_table.search().isEmpty())
        return tr("No parameter has \"%1\" in its number or name.").arg(m_table.search());
    const ClassCounts counts = m_book.counts();
    if (counts.notRead == counts.equal + counts.differ + counts.notRead)
        return tr("Not read yet. Tap \"Read\" to compare.");
    return counts.notRead > 0
        ? tr("Nothing of what was read differs. %1 were not read.").arg(counts.notRead)
        : tr("Nothing differs here.");
}

void ParametersPage::refresh()
{
    m_restore.look();
    if (!m_journalReadAt || m_book.now() - *m_journalReadAt >= journalAge) {
        m_journalReadAt = m_book.now();
        m_journal.refresh();
    }
    m_table.look();
    showSide(ParameterBook::First);
    showSide(ParameterBook::Second);
    const auto isThere = [this](ParameterBook::Place place) {
        return m_book.side(place).kind != ParameterSide::Kind::Nothing;
    };
    m_view->setSides(isThere(ParameterBook::First), isThere(ParameterBook::Second));
    m_view->setEmptyText(emptyText());
    m_counts->setText(m_book.countsText());
    setTextColour(*m_counts, lookOf(palette()).text);
    showButtons();
    m_writing->refresh();
}

void ParametersPage::setScale(double scale)
{
    setFont(sized(font(), scaled(textSize, scale)));
    const int target = std::max(scaled(buttonSize, scale), m_read->minimumSizeHint().height());
    m_groups->setButtonSize(target);
    for (TwoLineButton *side : m_sides)
        side->setFixedHeight(target);
    for (FlatButton *button : { m_read, m_save })
        button->setFixedSize(scaled(narrow, scale), target);
    m_apply->setFixedSize(scaled(wide, scale), target);
    for (FlatButton *button : { m_only, m_tickAll, m_find, m_up, m_down })
        button->setFixedSize(scaled(sideWidth, scale), target);
    m_view->setScale(scale);
    refresh();
}

} // namespace dx4::panel
