// SPDX-License-Identifier: MIT
// The frames of a line as rows.
#include "panel/lineview/frame_model.h"

#include "cli/registers/frame_text.h"
#include "host/base/length.h"

namespace dx4::panel {
namespace {

double milliseconds(host::Duration span)
{
    return std::chrono::duration<double, std::milli>(span).count();
}

int alignmentOf(int column)
{
    const bool isNumber = column == FrameModel::TurnaroundColumn;
    return static_cast<int>((isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
}

} // namespace

FrameModel::FrameModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void FrameModel::setLines(const QVector<FrameLine> &lines)
{
    beginResetModel();
    m_lines = lines;
    endResetModel();
}

int FrameModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : host::lengthOf(m_lines);
}

int FrameModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString FrameModel::textOf(const FrameLine &line, int column) const
{
    switch (column) {
    case TimeColumn:
        return timeOfDay(line.time);
    case WordsColumn:
        return (line.isRequest ? QStringLiteral("> ") : QStringLiteral("< ")) + line.words;
    default:
        return line.turnaround
            ? tr("%1 ms").arg(m_locale.toString(milliseconds(*line.turnaround), 'f', 1))
            : QString();
    }
}

QVariant FrameModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const FrameLine &line = m_lines.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return textOf(line, index.column());
    case Qt::ToolTipRole:
        return cli::bytesText(line.bytes);
    case Qt::TextAlignmentRole:
        return alignmentOf(index.column());
    case IsBadRole:
        return line.isBad;
    case IsFaintRole:
        return line.isRequest || index.column() != WordsColumn;
    default:
        return {};
    }
}

QVariant FrameModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole)
        return alignmentOf(section);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case TimeColumn:
        return tr("Time");
    case WordsColumn:
        return tr("Frame");
    default:
        return tr("Turnaround");
    }
}

} // namespace dx4::panel
