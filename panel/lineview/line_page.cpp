// SPDX-License-Identifier: MIT
// The page of the line: what is wrong with it, counted, timed and frame by frame.
#include "panel/lineview/line_page.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

namespace dx4::panel {
namespace {

// Sizes of texts in px, at a scale of 1.
constexpr int verdictSize = 18;
constexpr int buttonSize = 15;
constexpr int cellSize = 14;
constexpr int noteSize = 14;

constexpr int verdictLines = 2;
constexpr int narrowGap = 4; // px between texts

/// As much of a text as fits; all of it for screen readers.
void showElided(QLabel &label, const QString &text)
{
    label.setText(label.fontMetrics().elidedText(text, Qt::ElideMiddle, label.width()));
    label.setAccessibleName(text);
}

} // namespace

LinePage::LinePage(LineView &view, std::function<QVector<Place>()> places,
                   std::function<QDateTime()> now, QWidget *parent)
    : Page(parent)
    , m_view(view)
    , m_now(std::move(now))
    , m_verdict(makeLabel("verdict"))
    , m_load(makeLabel("load"))
    , m_record(makeLabel("record"))
    , m_counts(new LineTable(view.counts()))
    , m_body(new QStackedWidget)
{
    setObjectName(QStringLiteral("line"));
    m_verdict->setWordWrap(true);
    m_record->setAlignment(Qt::AlignRight);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(targetGap, targetGap, targetGap, 0);
    column->setSpacing(narrowGap);
    auto *notes = new QHBoxLayout;
    notes->setSpacing(2 * targetGap);
    m_load->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed); // the other gets what is left
    notes->addWidget(m_load);
    notes->addWidget(m_record, 1);
    column->addWidget(m_verdict);
    column->addLayout(notes);
    column->addLayout(makeButtons());
    column->addWidget(m_body, 1);
    m_counts->setObjectName(QStringLiteral("counters"));
    m_counts->setAccessibleName(tr("Counters"));
    // Room for six digits in each of the counters.
    QStringList widest { QString() };
    for (int i = CountsModel::SentColumn; i < CountsModel::ColumnCount; ++i)
        widest.append(i <= CountsModel::GoodColumn ? QStringLiteral("888888")
                                                   : QStringLiteral("8888"));
    m_counts->setColumns(CountsModel::NameColumn, widest);
    m_body->addWidget(m_counts);
    m_body->addWidget(makeAnswers());
    m_body->addWidget(makeFrames());
    m_stationSheet = new StationSheet(view, this);
    m_recordSheet = new RecordSheet(std::move(places), this);
    connect(m_stationSheet, &StationSheet::chosen, this, [this](int station) {
        m_view.setFilter({ station, m_view.filter().onlyBad });
        refresh();
    });
    connect(m_recordSheet, &RecordSheet::wanted, this,
            [this](const QString &file, bool mayReplace) {
                m_isAskedToReplace = false;
                m_view.recorder().begin(file, mayReplace);
                refresh();
            });
    setScale(1.0);
    open(Counters);
}

QLabel *LinePage::makeLabel(const char *name)
{
    auto *label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setObjectName(QString::fromLatin1(name));
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return label;
}

QWidget *LinePage::makeAnswers()
{
    auto *box = new QWidget;
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(narrowGap);
    m_summary = makeLabel("summary");
    m_chart = new AnswerChart;
    column->addWidget(m_summary);
    column->addWidget(m_chart, 1);
    return box;
}

QWidget *LinePage::makeFrames()
{
    auto *box = new QWidget;
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    m_frames = new LineTable(m_view.frames());
    m_frames->setObjectName(QStringLiteral("frames"));
    m_frames->setAccessibleName(tr("Frames"));
    m_frames->setColumns(
        FrameModel::WordsColumn,
        { QStringLiteral("88:88:88.888"), QString(), QStringLiteral("8888.8 ms") });
    m_noFrames = makeLabel("no frames");
    m_noFrames->setAlignment(Qt::AlignCenter);
    m_noFrames->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
    column->addWidget(m_frames, 1);
    column->addWidget(m_noFrames, 1);
    return box;
}

FlatButton *LinePage::makeButton(const QString &text, const char *name, bool isCheckable)
{
    auto *button = new FlatButton(text, this);
    button->setObjectName(QString::fromLatin1(name));
    button->setCheckable(isCheckable);
    button->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    return button;
}

QBoxLayout *LinePage::makeButtons()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    const QString names[] = { tr("Counters"), tr("Answers"), tr("Frames") };
    for (int i = 0; i < 3; ++i) {
        FlatButton *tab = makeButton(names[i], "tab", true);
        m_tabs.append(tab);
        row->addWidget(tab);
        connect(tab, &FlatButton::clicked, this, [this, i] { open(static_cast<View>(i)); });
    }
    m_recent = makeButton(tr("Last minute"), "recent", true);
    m_blocks = makeButton(tr("Blocks"), "blocks", true);
    m_station = makeButton({}, "station", false);
    m_onlyBad = makeButton(tr("Only errors"), "only errors", true);
    m_pause = makeButton(tr("Pause"), "pause", true);
    m_up = makeButton(tr("Up"), "up", false);
    m_down = makeButton(tr("Down"), "down", false);
    m_recordButton = makeButton({}, "record button", false);
    row->addStretch();
    for (FlatButton *button :
         { m_recent, m_blocks, m_station, m_onlyBad, m_pause, m_up, m_down, m_recordButton })
        row->addWidget(button);
    connect(m_recent, &FlatButton::clicked, this, [this](bool isOn) {
        m_view.showRecent(isOn);
        refresh();
    });
    connect(m_blocks, &FlatButton::clicked, this, [this](bool isOn) {
        m_view.showBlocks(isOn);
        refresh();
    });
    connect(m_station, &FlatButton::clicked, this, [this] { m_stationSheet->ask(); });
    connect(m_onlyBad, &FlatButton::clicked, this, [this](bool isOn) {
        m_view.setFilter({ m_view.filter().station, isOn });
        refresh();
    });
    connect(m_pause, &FlatButton::clicked, this, &LinePage::setPaused);
    connect(m_up, &FlatButton::clicked, this, [this] { turn(-1); });
    connect(m_down, &FlatButton::clicked, this, [this] { turn(1); });
    connect(m_recordButton, &FlatButton::clicked, this, &LinePage::recordOrEnd);
    return row;
}

void LinePage::open(View view)
{
    m_body->setCurrentIndex(view);
    for (int i = 0; i < m_tabs.size(); ++i)
        m_tabs[i]->setChecked(i == view);
    const bool isCounters = view == Counters;
    const bool isFrames = view == Frames;
    m_recent->setVisible(!isFrames);
    m_blocks->setVisible(isCounters);
    m_station->setVisible(!isCounters);
    m_onlyBad->setVisible(isFrames);
    m_pause->setVisible(isFrames);
    m_up->setVisible(isCounters || isFrames);
    m_down->setVisible(isCounters || isFrames);
    refresh();
}

/// Whoever turns back wants to read: the frames stand still from then on.
void LinePage::turn(int pages)
{
    const bool isFrames = m_body->currentIndex() == Frames;
    if (isFrames && pages < 0)
        m_view.setPaused(true);
    (isFrames ? m_frames : m_counts)->turn(pages);
    refresh();
}

void LinePage::setPaused(bool isPaused)
{
    m_view.setPaused(isPaused);
    refresh();
}

void LinePage::recordOrEnd()
{
    if (m_view.recorder().isBusy())
        m_view.recorder().end();
    else
        m_recordSheet->ask(m_now());
    refresh();
}

void LinePage::askWhereItExists()
{
    const FrameRecorder::State state = m_view.recorder().state();
    if (state.stage != FrameRecorder::Stage::Exists || std::exchange(m_isAskedToReplace, true))
        return;
    m_recordSheet->askToReplace(state.file);
}

void LinePage::showButtons()
{
    m_recent->setChecked(m_view.isRecent());
    m_blocks->setChecked(m_view.areBlocksShown());
    m_onlyBad->setChecked(m_view.filter().onlyBad);
    m_pause->setChecked(m_view.isPaused());
    const int station = m_view.filter().station;
    m_station->setText(station == 0 ? tr("All stations") : tr("Station %1").arg(station));
    m_station->setAccessibleName(station == 0 ? tr("All stations") : m_view.stationName(station));
    const LineTable *table = m_body->currentIndex() == Frames ? m_frames : m_counts;
    m_up->setEnabled(table->canTurnUp());
    m_down->setEnabled(table->canTurnDown());
    const FrameRecorder::Stage stage = m_view.recorder().state().stage;
    m_recordButton->setText(m_view.recorder().isBusy() ? tr("End recording") : tr("Record..."));
    m_recordButton->setEnabled(stage != FrameRecorder::Stage::Ending);
}

void LinePage::showTexts()
{
    const Look look = lookOf(palette());
    const LineVerdict verdict = m_view.verdict();
    m_verdict->setText(verdict.text);
    setTextColour(*m_verdict, verdict.isBad ? look.warning : look.text);
    m_load->setText(m_view.loadText());
    setTextColour(*m_load, look.faded);
    showElided(*m_record, m_view.recordText());
    const bool hasFailed = m_view.recorder().state().stage == FrameRecorder::Stage::Failed;
    setTextColour(*m_record, hasFailed ? look.warning : look.text);
}

void LinePage::showAnswers()
{
    const int station = m_view.filter().station;
    const QString name = station == 0 ? tr("All stations") : m_view.stationName(station);
    const host::RequestCounts counts = m_view.chosenCounts();
    m_chart->setCounts(counts);
    showElided(*m_summary, answerSummary(counts, name));
}

void LinePage::refresh()
{
    if (!m_recordSheet)
        return;
    m_view.look();
    askWhereItExists();
    showTexts();
    if (m_body->currentIndex() == Answers)
        showAnswers();
    const bool hasFrames = m_view.frames().rowCount() > 0;
    m_frames->setVisible(hasFrames);
    m_noFrames->setVisible(!hasFrames);
    m_noFrames->setText(m_view.filter().onlyBad ? tr("No error was seen so far")
                                                : tr("No frame was seen so far"));
    if (!m_view.isPaused())
        m_frames->scrollToBottom();
    showButtons();
}

void LinePage::setScale(double scale)
{
    const auto at = [scale](int size) { return static_cast<int>(size * scale); };
    m_verdict->setFont(sized(font(), at(verdictSize), true));
    m_verdict->setFixedHeight(verdictLines * m_verdict->fontMetrics().height());
    for (QLabel *label : { m_load, m_record, m_summary, m_noFrames })
        label->setFont(sized(font(), at(noteSize)));
    for (LineTable *table : { m_counts, m_frames })
        table->setTextSize(at(cellSize));
    m_chart->setTextSize(at(cellSize));
    const auto buttons = findChildren<FlatButton *>(QString(), Qt::FindDirectChildrenOnly);
    for (FlatButton *button : buttons)
        button->setFont(sized(font(), at(buttonSize)));
    refresh();
}

void LinePage::resizeEvent(QResizeEvent *)
{
    refresh();
}

} // namespace dx4::panel
