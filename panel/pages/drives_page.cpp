// SPDX-License-Identifier: MIT
// The page of the drives: all as cards, one large.
#include "panel/pages/drives_page.h"

#include "panel/widgets/look.h"

#include <QHBoxLayout>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int columnGap = 2 * targetGap; // between the cards and the large drive

} // namespace

DrivesPage::DrivesPage(PanelLine &line, const std::function<host::Duration()> &now, QWidget *parent)
    : Page(parent)
    , m_line(line)
    , m_list(new DriveList(line))
    , m_view(new DriveView(now))
    , m_pad(nullptr)
{
    setObjectName(QStringLiteral("drives"));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(targetGap, targetGap, targetGap, 0);
    row->setSpacing(columnGap);
    row->addWidget(m_list, 0);
    row->addWidget(m_view, 1);
    m_pad = new NumberPad(tr("Set frequency"), now, this);
    connect(m_list, &DriveList::chosen, this, &DrivesPage::choose);
    connect(m_view, &DriveView::startWanted, this, [this] { m_line.start(m_chosen); });
    connect(m_view, &DriveView::reverseWanted, this, [this] { m_line.reverse(m_chosen); });
    connect(m_view, &DriveView::stopWanted, this, [this] { m_line.stop(m_chosen); });
    connect(m_view, &DriveView::frequencyWanted, this, &DrivesPage::askFrequency);
    connect(m_pad, &NumberPad::entered, this,
            [this](double hertz) { m_line.setFrequency(m_asked, hertz); });
    choose(0);
}

void DrivesPage::askFrequency()
{
    m_asked = m_chosen;
    m_pad->setTitle(tr("%1: set frequency").arg(m_line.drive(m_asked).name));
    m_pad->ask(QStringLiteral("Hz"), m_line.highestFrequency(m_asked));
}

void DrivesPage::choose(int index)
{
    m_chosen = index;
    m_list->choose(index);
    refresh();
}

void DrivesPage::setScale(double scale)
{
    m_scale = scale;
    arrange();
}

void DrivesPage::resizeEvent(QResizeEvent *)
{
    arrange();
}

/// The large drive gets what the cards leave, and is as large as its width allows.
void DrivesPage::arrange()
{
    m_list->setRoom({ width(), height() - targetGap }, m_scale);
    const int left = width() - 2 * targetGap - columnGap - m_list->width();
    const double across = static_cast<double>(left) / DriveView::plainWidth;
    m_view->setScale(std::clamp(across, 1.0, m_scale));
    refresh();
}

void DrivesPage::refresh()
{
    if (m_line.driveCount() == 0)
        return;
    m_list->refresh();
    m_view->show(m_line.drive(m_chosen));
}

} // namespace dx4::panel
