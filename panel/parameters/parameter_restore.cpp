// SPDX-License-Identifier: MIT
// Ticked values on their way to a drive.
#include "panel/parameters/parameter_restore.h"

#include <utility>

namespace dx4::panel {

Standing standingOf(const PanelLine &line, int station)
{
    if (line.mayRun().contains(station))
        return Standing::Runs;
    return line.stands(station) ? Standing::Stands : Standing::Unknown;
}

ParameterRestore::ParameterRestore(ParameterBook &book, Standings standing, QObject *parent)
    : QObject(parent)
    , m_book(book)
    , m_standing(std::move(standing))
{
}

void ParameterRestore::follow(const host::LineService &service)
{
    using host::LineService;
    connect(&service, &LineService::jobProgressed, this, &ParameterRestore::noteProgress);
    connect(&service, &LineService::restored, this, &ParameterRestore::noteRestored);
}

RestorePlan ParameterRestore::plan() const
{
    const ParameterSide &first = m_book.side(ParameterBook::First);
    const ParameterSide &second = m_book.side(ParameterBook::Second);
    RestorePlan plan { first.name,         first.set.station, second.name,
                       second.set.station, m_book.ticked(),   {} };
    for (auto wanted = plan.set.values.begin(); wanted != plan.set.values.end(); ++wanted) {
        const ParameterNames::Label *label = m_book.names().find(plan.station, wanted.key());
        const QString number = QStringLiteral("F ") + parameterNumber(wanted.key());
        plan.changes.append(tr("%1: %2 to %3")
                                .arg(label ? number + QLatin1Char(' ') + label->name : number,
                                     quantityText(label, second.value(wanted.key()).value_or(0)),
                                     quantityText(label, wanted.value())));
    }
    return plan;
}

QString ParameterRestore::refusal(const RestorePlan &plan) const
{
    if (isRunning())
        return tr("A restore is under way.");
    if (plan.set.values.isEmpty())
        return tr("No row is ticked.");
    switch (m_standing(plan.station)) {
    case Standing::Runs:
        return tr("The motor of %1 runs, or may run. Stop it first.").arg(plan.drive);
    case Standing::Unknown:
        return tr("Nothing says that the motor of %1 stands: its status word is not read, or old.")
            .arg(plan.drive);
    case Standing::Stands:
        return {};
    }
    return {};
}

bool ParameterRestore::begin(const RestorePlan &plan, bool isAgreed)
{
    if (!refusal(plan).isEmpty() || (plan.isOfOther() && !isAgreed))
        return false;
    clear();
    m_plan = plan;
    m_id = m_book.port().restore(plan.station, plan.set);
    if (m_id == 0)
        m_report.append(tr("Nothing was written: the line is closed."));
    Q_EMIT changed();
    return m_id != 0;
}

void ParameterRestore::cancel()
{
    if (!isRunning())
        return;
    if (m_endedBecause.isEmpty())
        m_endedBecause = tr("It was ended here.");
    m_book.port().cancelJob(m_id);
}

void ParameterRestore::look()
{
    if (!isRunning() || !m_endedBecause.isEmpty() || m_standing(m_plan.station) != Standing::Runs)
        return;
    m_endedBecause = tr("It was ended because the motor was started.");
    m_book.port().cancelJob(m_id);
}

void ParameterRestore::clear()
{
    m_done = 0;
    m_total = 0;
    m_endedBecause.clear();
    m_report.clear();
    m_isRestored = false;
}

QString ParameterRestore::progressText() const
{
    if (m_total == 0)
        return tr("It waits for its turn.");
    return tr("%1 of %2 registers read").arg(m_done).arg(m_total);
}

void ParameterRestore::noteProgress(int id, int done, int total)
{
    if (!isRunning() || id != m_id)
        return;
    m_done = done;
    m_total = total;
    Q_EMIT changed();
}

void ParameterRestore::noteRestored(int id, const host::RestoreReport &report)
{
    if (!isRunning() || id != m_id)
        return;
    m_id = 0;
    m_isRestored = report.isRestored();
    m_report.append(tr("%1 compared, %2 written, %3 verified")
                        .arg(report.compared)
                        .arg(report.written)
                        .arg(report.verified));
    m_report.append(tr("%1 refused, %2 still different, %3 not looked at")
                        .arg(report.refused.size())
                        .arg(report.remaining.size())
                        .arg(report.unseen));
    if (!report.interrupted.isEmpty())
        m_report.append(m_endedBecause.isEmpty() ? tr("It broke off: %1").arg(report.interrupted)
                                                 : m_endedBecause);
    m_report.append(report.refused);
    for (const host::ParameterDifference &difference : report.remaining)
        m_report.append(tr("still different, wanted | held: %1").arg(difference.text()));
    // Any write may have changed other registers as well.
    m_book.readAgain(m_plan.station);
    Q_EMIT changed();
}

} // namespace dx4::panel
