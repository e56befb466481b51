// SPDX-License-Identifier: MIT
// The page of the trend: what it shows now.
#include "panel/trendview/trace_colours.h"
#include "panel/trendview/trend_page.h"

#include <QLocale>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int firstTraces = 4; // that are shown before anybody chose

/// Without its unit.
QString numberOf(const TraceReading &trace, const std::optional<double> &quantity,
                 const QLocale &locale)
{
    return quantity ? locale.toString(*quantity, 'f', trace.scaling.decimals) : Shown::dashes();
}

} // namespace

/// The first quantities of the first drive, and whether it runs.
void TrendPage::chooseFirst()
{
    const QVector<TraceInfo> registers = m_store.registers();
    QVector<TraceChoice> chosen;
    for (const TraceInfo &info : registers) {
        const bool isOfFirst = info.key.station == registers.first().key.station;
        const int running = m_store.states().key(QStringLiteral("running"), -1);
        if (isOfFirst && info.counts == Counts::Bits && running >= 0)
            chosen.append({ info.key, running });
        else if (isOfFirst && info.key.regType == QLatin1String("D") && chosen.size() < firstTraces)
            chosen.append({ info.key, -1 });
    }
    if (!chosen.isEmpty())
        choose(chosen);
}

TraceReading TrendPage::readingOf(const TraceChoice &choice, std::size_t level, Moment from,
                                  Moment to)
{
    TraceReading reading;
    reading.choice = choice;
    reading.name = m_store.nameOf(choice);
    if (const TraceInfo *info = m_store.find(choice.key)) {
        reading.drive = info->drive;
        reading.scaling = info->scaling;
    }
    m_store.read(choice.key, level, from, to, &reading.run);
    return reading;
}

bool TrendPage::isOfOneDrive() const
{
    return std::all_of(m_choices.begin(), m_choices.end(), [this](const TraceChoice &choice) {
        return choice.key.station == m_choices.first().key.station;
    });
}

/// Whose values these are, where that is one drive, and whether the picture stands still.
QStringList TrendPage::notesOf() const
{
    const TraceInfo *first = m_choices.isEmpty() ? nullptr : m_store.find(m_choices.first().key);
    QStringList notes;
    if (first && isOfOneDrive())
        notes.append(first->drive);
    const QString state = stateNote();
    if (!state.isEmpty())
        notes.append(state);
    return notes;
}

QString TrendPage::stateNote() const
{
    if (m_store.isArmed())
        return tr("Waiting for the trigger");
    if (m_window.isLive())
        return {};
    const Moment to = std::min(m_window.to(m_store.now()), m_store.now());
    const QString until = timeText(to, m_store.clockShift(), false);
    if (!m_triggered.isEmpty())
        return tr("Trigger: %1").arg(m_triggered);
    return tr("Paused at %1").arg(until);
}

TraceScene TrendPage::makeScene()
{
    TraceScene scene;
    scene.now = m_store.now();
    scene.shift = m_store.clockShift();
    scene.to = m_window.to(scene.now);
    const Moment pixel =
        std::max<Moment>(1, m_window.span() / std::max(1, m_view->plotRect().width()));
    // A window that moved by less than a pixel would look the same.
    if (m_window.isLive())
        scene.to = (scene.to / pixel + 1) * pixel;
    scene.from = scene.to - m_window.span();
    scene.selected = m_selected;
    scene.cursors = m_cursors;
    scene.notes = notesOf();
    scene.markers = m_store.markers(scene.from, scene.to);
    const std::size_t level =
        m_store.levelFor(m_choices, scene.from, scene.to, m_view->mostColumns());
    for (const TraceChoice &choice : std::as_const(m_choices)) {
        const TraceReading reading = readingOf(choice, level, scene.from, scene.to);
        (choice.bit < 0 ? scene.traces : scene.lanes).append(reading);
    }
    return scene;
}

std::vector<qint64> TrendPage::signatureOf(const TraceScene &scene) const
{
    const auto size = m_view->size();
    std::vector<qint64> signature { scene.from,
                                    scene.to,
                                    scene.shift / 1000,
                                    scene.selected,
                                    scene.markers.size(),
                                    scene.cursors.front().value_or(0),
                                    scene.cursors.back().value_or(0),
                                    static_cast<qint64>(qHash(scene.notes.join(QLatin1Char('\n')))),
                                    size.width(),
                                    size.height(),
                                    palette().color(QPalette::Window).lightness() };
    for (const TraceReading &trace : scene.traces + scene.lanes) {
        const Column last = trace.run.columns.empty() ? Column() : trace.run.columns.back();
        for (const qint64 part :
             { static_cast<qint64>(qHash(trace.name)), static_cast<qint64>(trace.choice.bit),
               trace.run.begin, trace.run.width, static_cast<qint64>(trace.run.columns.size()),
               static_cast<qint64>(last.lowest), static_cast<qint64>(last.highest),
               static_cast<qint64>(last.last), static_cast<qint64>(last.hasGap) })
            signature.push_back(part);
    }
    return signature;
}

void TrendPage::refresh()
{
    m_store.look();
    if (m_choices.isEmpty())
        chooseFirst();
    const TraceScene scene = makeScene();
    showChips(scene);
    showButtons();
    std::vector<qint64> signature = signatureOf(scene);
    if (signature == m_drawn)
        return;
    m_drawn = std::move(signature);
    ++m_drawnCount;
    m_view->show(scene);
}

TraceChip::Content TrendPage::contentOf(const TraceReading &trace, const TraceScene &scene) const
{
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    TraceChip::Content content;
    content.name =
        isOfOneDrive() ? trace.name : QStringLiteral("%1: %2").arg(trace.drive, trace.name);
    if (!scene.cursors.front()) {
        const auto value = m_store.valueOf(trace.choice.key);
        content.isOld = !value;
        content.lines.append(value ? quantityText(trace, trace.scaling.quantity(*value), locale)
                                   : Shown::dashes());
        return content;
    }
    const auto atA = quantityAt(trace, *scene.cursors.front());
    const auto atB = quantityAt(trace, *scene.cursors.back());
    const QString difference =
        atA && atB ? quantityText(trace, *atB - *atA, locale) : Shown::dashes();
    content.lines.append(QStringLiteral("A %1  B %2")
                             .arg(numberOf(trace, atA, locale), numberOf(trace, atB, locale)));
    content.lines.append(QStringLiteral("B-A ") + difference);
    return content;
}

void TrendPage::showChips(const TraceScene &scene)
{
    for (int i = 0; i < m_chips.size(); ++i) {
        TraceChip *chip = m_chips.at(i);
        chip->setVisible(i < scene.traces.size());
        chip->setChecked(i == scene.selected);
        if (i < scene.traces.size())
            chip->show(contentOf(scene.traces.at(i), scene));
    }
}

void TrendPage::showButtons()
{
    for (std::size_t i = 0; i < spans.size(); ++i)
        m_spans.at(static_cast<int>(i))->setChecked(m_window.span() == spans.at(i));
    m_pause->setChecked(!m_window.isLive());
    m_pause->setText(m_window.isLive() ? tr("Pause") : tr("Live"));
    m_measure->setChecked(m_cursors.front().has_value());
    m_wait->setChecked(m_store.isArmed());
}

} // namespace dx4::panel
