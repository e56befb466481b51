// SPDX-License-Identifier: MIT
// Counters of the line as rows: all, each station, and its blocks.
#include "panel/lineview/counts_model.h"

#include "host/base/length.h"
#include "host/link/notation.h"

#include <algorithm>
#include <utility>

namespace dx4::panel {
namespace {

/// Failures by cause stand between what was sent and what became of it.
bool isFailure(int column)
{
    return column >= CountsModel::SilenceColumn && column <= CountsModel::ExceptionColumn;
}

quint64 countOf(const host::RequestCounts &counts, int column)
{
    switch (column) {
    case CountsModel::SentColumn:
        return counts.requests;
    case CountsModel::GoodColumn:
        return counts.good;
    case CountsModel::SilenceColumn:
        return counts.timeouts;
    case CountsModel::TruncatedColumn:
        return counts.truncated;
    case CountsModel::CrcColumn:
        return counts.badCrc;
    case CountsModel::ForeignColumn:
        return counts.foreign;
    case CountsModel::WrongColumn:
        return counts.wrongReplies;
    case CountsModel::ExceptionColumn:
        return exceptionsOf(counts);
    case CountsModel::RetryColumn:
        return counts.retries;
    case CountsModel::GivenUpColumn:
        return counts.giveUps;
    default:
        return counts.notAsked;
    }
}

} // namespace

CountsModel::CountsModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

bool CountsModel::hasSameNames(const QVector<CountsRow> &rows) const
{
    return std::equal(rows.begin(), rows.end(), m_rows.begin(), m_rows.end(),
                      [](const CountsRow &a, const CountsRow &b) {
                          return a.name == b.name && a.isBlock == b.isBlock;
                      });
}

void CountsModel::tellChanged()
{
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

void CountsModel::setRows(const QVector<CountsRow> &rows)
{
    if (hasSameNames(rows)) {
        m_rows = rows;
        return tellChanged();
    }
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

void CountsModel::setOld(bool isOld)
{
    if (std::exchange(m_isOld, isOld) != isOld)
        tellChanged();
}

int CountsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : host::lengthOf(m_rows);
}

int CountsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant CountsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const CountsRow &row = m_rows.at(index.row());
    const bool isName = index.column() == NameColumn;
    const quint64 count = isName ? 0 : countOf(row.counts, index.column());
    switch (role) {
    case Qt::DisplayRole:
        return isName ? (row.isBlock ? QStringLiteral("    ") : QString()) + row.name
                      : m_locale.toString(count);
    case Qt::TextAlignmentRole:
        return static_cast<int>((isName ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    case IsBadRole:
        return !m_isOld && count > 0
            && (isFailure(index.column()) || index.column() == GivenUpColumn);
    case IsFaintRole:
        return m_isOld || row.isBlock || (!isName && count == 0);
    default:
        return {};
    }
}

QVariant CountsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>((section == NameColumn ? Qt::AlignLeft : Qt::AlignRight)
                                | Qt::AlignBottom);
    if (role != Qt::DisplayRole)
        return {};
    const QString names[] = {
        tr("Station"),       tr("Sent"),       tr("Good"),           tr("Silence"),
        tr("Truncated"),     tr("Wrong\nCRC"), tr("Other\nstation"), tr("Wrong\nreply"),
        tr("Excep-\ntions"), tr("Retries"),    tr("Given\nup"),      tr("Not\nasked"),
    };
    return names[section];
}

QString rangeText(const QString &regType, int address, int count)
{
    const bool isTheOnlyOne = address == 0 && count == 1 && regType.size() > 1; // "SW"
    if (isTheOnlyOne)
        return regType;
    const QString first = regType + QLatin1Char(' ') + host::addressText(regType, address);
    if (count < 2)
        return first;
    return first + QLatin1Char('-') + host::addressText(regType, address + count - 1);
}

QString blockName(const host::BlockKey &block)
{
    const QString kind = block.isWrite ? CountsModel::tr("write") : CountsModel::tr("read");
    return QStringLiteral("%1 %2").arg(kind, rangeText(block.regType, block.address, block.count));
}

} // namespace dx4::panel
