// SPDX-License-Identifier: MIT
// One drive large.
#include "panel/pages/drive_view.h"

#include "panel/widgets/fit_text.h"
#include "panel/widgets/look.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <utility>

namespace dx4::panel {
namespace {

// Sizes of texts in px, at a scale of 1.
constexpr int nameSize = 20;
constexpr int wordSize = 16;
constexpr int unitSize = 32;
constexpr int leastCommandSize = 12; // in languages with long words
constexpr int captionSize = 13;
constexpr int cellSize = 20;
constexpr int marksWidth = 64; // of "12 s old"
constexpr int wideGap = 4; // px between two parts
constexpr int narrowGap = 1; // px, where there is no room for more
constexpr int cellColumns = 3;
constexpr int wayLines = 2; // a refusal is a sentence
constexpr int cellGap = 2; // px between two rows of them

/// As much of a text as fits; all of it for screen readers.
void showFitting(QLabel &label, const QString &text, int lines = 1)
{
    label.setText(fittingText(label.fontMetrics(), text, label.contentsRect().width(), lines));
    label.setAccessibleName(text);
}

void setGround(QLabel &label, const QColor &ground, const QColor &text)
{
    QPalette palette = label.palette();
    if (palette.color(QPalette::Window) == ground && label.autoFillBackground())
        return;
    palette.setColor(QPalette::Window, ground);
    palette.setColor(QPalette::WindowText, text);
    label.setPalette(palette);
    label.setAutoFillBackground(true);
}

} // namespace

DriveView::DriveView(std::function<host::Duration()> now, QWidget *parent)
    : QWidget(parent)
    , m_now(std::move(now))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(wideGap);
    column->addLayout(makeHead());
    m_state = makeLabel("state");
    column->addWidget(m_state);
    column->addLayout(makeFrequency());
    column->addLayout(makeCells());
    column->addStretch();
    m_way = makeLabel("way");
    column->addWidget(m_way);
    column->addLayout(makeCommands());
    setScale(1.0);
}

QLabel *DriveView::makeLabel(const char *name)
{
    auto *label = new QLabel(this);
    label->setTextFormat(Qt::PlainText);
    label->setObjectName(QString::fromLatin1(name));
    // Texts of any length: the layout gives the room, and the text is cut to it.
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return label;
}

QBoxLayout *DriveView::makeHead()
{
    auto *row = new QHBoxLayout;
    m_name = makeLabel("name");
    m_fault = makeLabel("fault");
    row->addWidget(m_name, 1);
    row->addWidget(m_fault, 1);
    return row;
}

QBoxLayout *DriveView::makeFrequency()
{
    auto *row = new QHBoxLayout;
    m_frequency = new ValueLabel(frequencySize, ValueLabel::Age::Elsewhere, this);
    m_frequency->setObjectName(QStringLiteral("frequency"));
    m_frequency->setAlignment(Qt::AlignBottom);
    m_marks = new QLabel(this);
    m_marks->setObjectName(QStringLiteral("marks"));
    m_marks->setWordWrap(true);
    m_unit = new QLabel(this);
    m_unit->setAlignment(Qt::AlignBottom);
    m_dial = new Dial(this);
    auto *side = new QVBoxLayout;
    side->setSpacing(0);
    side->addStretch();
    side->addWidget(m_marks);
    side->addWidget(m_unit);
    row->addWidget(m_frequency);
    row->addLayout(side);
    row->addWidget(m_dial, 1);
    return row;
}

QLayout *DriveView::makeCells()
{
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(targetGap);
    grid->setVerticalSpacing(cellGap);
    for (int i = 0; i < mostCells; ++i) {
        auto *box = new QVBoxLayout;
        box->setSpacing(0);
        const Cell cell { makeLabel("caption"),
                          new ValueLabel(cellSize, ValueLabel::Age::Elsewhere) };
        cell.value->setObjectName(QStringLiteral("cell %1").arg(i));
        cell.value->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        box->addWidget(cell.caption);
        box->addWidget(cell.value);
        grid->addLayout(box, i / cellColumns, i % cellColumns);
        m_cells.append(cell);
    }
    for (int column = 0; column < cellColumns; ++column)
        grid->setColumnStretch(column, 1);
    return grid;
}

QBoxLayout *DriveView::makeCommands()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    m_start = new HoldButton(tr("Hold to start"), m_now);
    m_reverse = new HoldButton(tr("Hold to reverse"), m_now);
    m_stop = new HoldButton(tr("Hold to stop this one"), m_now);
    m_change = new FlatButton(tr("Frequency..."));
    m_start->setObjectName(QStringLiteral("start"));
    m_reverse->setObjectName(QStringLiteral("reverse"));
    m_stop->setObjectName(QStringLiteral("stop this"));
    m_change->setObjectName(QStringLiteral("change"));
    for (FlatButton *button : commands()) {
        // Words may stand in two lines, which is less than the button would like.
        button->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        row->addWidget(button, 1);
    }
    m_reverse->hide();
    connect(m_start, &HoldButton::held, this, &DriveView::startWanted);
    connect(m_reverse, &HoldButton::held, this, &DriveView::reverseWanted);
    connect(m_stop, &HoldButton::held, this, &DriveView::stopWanted);
    connect(m_change, &FlatButton::clicked, this, &DriveView::frequencyWanted);
    return row;
}

void DriveView::setScale(double scale)
{
    m_scale = scale;
    const auto at = [scale](int size) { return static_cast<int>(size * scale); };
    m_name->setFont(sized(font(), at(nameSize), true));
    m_fault->setFont(sized(font(), at(nameSize), true));
    m_state->setFont(sized(font(), at(wordSize)));
    m_way->setFont(sized(font(), at(wordSize)));
    m_frequency->setTextSize(at(frequencySize));
    m_unit->setFont(sized(font(), at(unitSize)));
    // Number and unit stand on one line: both are at the bottom, the unit by as much higher as it
    // reaches less far below that line.
    const int below = m_frequency->fontMetrics().descent() - m_unit->fontMetrics().descent();
    m_unit->setContentsMargins(0, 0, 0, below);
    m_marks->setFont(sized(font(), at(captionSize), true));
    m_marks->setFixedWidth(at(marksWidth));
    m_way->setFixedHeight(wayLines * m_way->fontMetrics().lineSpacing());
    m_dial->setScale(scale);
    for (const Cell &cell : std::as_const(m_cells)) {
        cell.caption->setFont(sized(font(), at(captionSize)));
        cell.value->setTextSize(at(cellSize));
    }
    sizeCommands();
    fitCells();
}

/// As large as the words allow that stand beside each other.
void DriveView::sizeCommands()
{
    for (int size = wordSize; size >= leastCommandSize; --size) {
        int wanted = -targetGap;
        for (FlatButton *button : commands()) {
            button->setFont(sized(font(), static_cast<int>(size * m_scale)));
            if (button != m_reverse || m_canReverse)
                wanted += button->minimumSizeHint().width() + targetGap;
        }
        if (wanted <= width())
            break;
    }
    // Now, as in the midst of a resize nobody asks for it again.
    layout()->invalidate();
    layout()->activate();
}

/// What is left out where there is little room: rows of cells, but for the first.
QSize DriveView::minimumSizeHint() const
{
    QSize size = QWidget::minimumSizeHint();
    for (int i = cellColumns; i < m_cells.size(); i += cellColumns) {
        const Cell &cell = m_cells.at(i);
        if (!cell.caption->isHidden())
            size -= QSize(
                0, cell.caption->sizeHint().height() + cell.value->sizeHint().height() + cellGap);
    }
    return size;
}

/// Rows go first, then what lies between them.
void DriveView::fitCells()
{
    const int rows = (static_cast<int>(m_cells.size()) + cellColumns - 1) / cellColumns;
    layout()->setSpacing(wideGap);
    for (int shown = rows; shown > 0; --shown) {
        for (int i = 0; i < m_cells.size(); ++i) {
            m_cells.at(i).caption->setVisible(i / cellColumns < shown);
            m_cells.at(i).value->setVisible(i / cellColumns < shown);
        }
        // What was hidden just now is known to the layouts within only when they are asked anew.
        layout()->invalidate();
        layout()->activate();
        if (layout()->minimumSize().height() <= height())
            return;
    }
    layout()->setSpacing(narrowGap);
}

void DriveView::setReadOnly()
{
    for (QWidget *widget : { static_cast<QWidget *>(m_start), static_cast<QWidget *>(m_reverse),
                             static_cast<QWidget *>(m_stop), static_cast<QWidget *>(m_change),
                             static_cast<QWidget *>(m_way) })
        widget->hide();
}

void DriveView::resizeEvent(QResizeEvent *)
{
    sizeCommands();
    fitCells();
    showFitting(*m_name, m_name->accessibleName());
    showFitting(*m_state, m_state->accessibleName());
    showFitting(*m_way, m_way->accessibleName(), wayLines);
}

void DriveView::showHead(const DriveShown &drive)
{
    const Look look = lookOf(palette());
    showFitting(*m_name, drive.name);
    showFitting(*m_state, drive.state.fullText());
    const bool isStateFresh = drive.state.trust == Shown::Trust::Fresh;
    setTextColour(*m_state, isStateFresh ? look.text : look.faded);
    showFitting(*m_fault, drive.fault.fullText());
    m_fault->setAlignment(drive.isFaulty ? Qt::AlignCenter : Qt::AlignRight | Qt::AlignVCenter);
    if (drive.isFaulty) {
        setGround(*m_fault, look.faultGround, look.faultText);
        return;
    }
    const bool isFaultFresh = drive.fault.trust == Shown::Trust::Fresh;
    m_fault->setAutoFillBackground(false);
    setTextColour(*m_fault, isFaultFresh ? look.text : look.faded);
}

void DriveView::showFrequency(const DriveShown &drive)
{
    const Look look = lookOf(palette());
    Shown number = drive.frequency;
    number.unit.clear();
    m_frequency->show(tr("Frequency"), number);
    m_unit->setText(drive.frequency.unit);
    const bool isFresh = drive.frequency.trust == Shown::Trust::Fresh;
    setTextColour(*m_unit, isFresh ? look.text : look.faded);
    m_marks->setText(drive.frequency.marks());
    setTextColour(*m_marks, look.faded);
    m_dial->show(drive.frequency, drive.set);
}

void DriveView::showCells(const DriveShown &drive)
{
    const Look look = lookOf(palette());
    for (int i = 0; i < m_cells.size(); ++i) {
        const bool isUsed = i < drive.others.size();
        const NamedShown other = isUsed ? drive.others.at(i) : NamedShown();
        const Cell &cell = m_cells.at(i);
        // The age goes where its text has room: a value is never cut.
        const QString marks = other.shown.marks();
        showFitting(*cell.caption,
                    marks.isEmpty() ? other.name : QStringLiteral("%1, %2").arg(other.name, marks));
        setTextColour(*cell.caption, look.faded);
        if (isUsed)
            cell.value->show(other.name, other.shown);
        else
            cell.value->clear();
    }
}

void DriveView::show(const DriveShown &drive)
{
    const Look look = lookOf(palette());
    showHead(drive);
    showFrequency(drive);
    showCells(drive);
    showFitting(*m_way, drive.way, wayLines);
    setTextColour(*m_way, drive.isWayBad ? look.warning : look.text);
    if (m_canReverse != drive.canReverse) {
        m_canReverse = drive.canReverse;
        m_reverse->setVisible(m_canReverse);
        sizeCommands();
    }
    m_change->setEnabled(drive.canTakeFrequency);
}

} // namespace dx4::panel
