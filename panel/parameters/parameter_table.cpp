// SPDX-License-Identifier: MIT
// The rows of the parameters that are looked at.
#include "panel/parameters/parameter_table.h"

#include "host/link/notation.h"
#include "panel/model/shown.h"
#include "register_tables.h"

#include <algorithm>

namespace dx4::panel {
namespace {

using Known = ParameterSide::Known;

ParameterBook::Place placeOf(int column)
{
    return column == ParameterTable::First ? ParameterBook::First : ParameterBook::Second;
}

/// Values of a file are told from those of a drive, of which only the latter have an age.
QString sideCaption(const ParameterBook &book, ParameterBook::Place place)
{
    if (!book.isCompared())
        return ParameterTable::tr("Value");
    const bool isFile = book.side(place).kind == ParameterSide::Kind::File;
    if (place == ParameterBook::First)
        return isFile ? ParameterTable::tr("Left, file") : ParameterTable::tr("Left, drive");
    return isFile ? ParameterTable::tr("Right, file") : ParameterTable::tr("Right, drive");
}

} // namespace

ParameterTable::ParameterTable(ParameterBook &book, ParameterJournal &journal, QObject *parent)
    : QAbstractTableModel(parent)
    , m_book(book)
    , m_journal(journal)
{
    rebuild();
    connect(&book, &ParameterBook::changed, this, &ParameterTable::rebuild);
    connect(&journal, &ParameterJournal::changed, this, &ParameterTable::rebuild);
}

int ParameterTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ParameterTable::columnCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return m_journal.isThere() ? ColumnCount : ColumnCount - 1;
}

bool ParameterTable::isFound(int address) const
{
    QString wanted = m_search.toLower();
    if (wanted.startsWith(QStringLiteral("f ")))
        wanted = wanted.mid(2);
    return parameterNumber(address).startsWith(wanted) || nameOf(address).toLower().contains(wanted)
        || host::fullAddress(REG_LIST[TypeF], address).toLower().contains(wanted);
}

bool ParameterTable::isWanted(int address) const
{
    if (m_group != allGroups && groupOf(address) != m_group)
        return false;
    // What is searched for is shown however it compares.
    if (!m_search.isEmpty())
        return isFound(address);
    if (!m_isOnlyDifferences || !m_book.isCompared())
        return true;
    const RowClass is = m_book.classOf(address);
    return is != RowClass::Equal && is != RowClass::NotRead;
}

/// Rows that stay keep their place, so that nothing jumps under a finger.
void ParameterTable::rebuild()
{
    QVector<int> rows;
    for (int address : host::allParameters()) {
        if (isWanted(address))
            rows.append(address);
    }
    if (rows == m_rows) {
        if (!m_rows.isEmpty())
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
        return;
    }
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

void ParameterTable::setGroup(int group)
{
    m_group = group;
    rebuild();
}

void ParameterTable::setSearch(const QString &text)
{
    m_search = text.simplified();
    rebuild();
}

void ParameterTable::setOnlyDifferences(bool isOn)
{
    m_isOnlyDifferences = isOn;
    rebuild();
}

void ParameterTable::look()
{
    bool isOther = false;
    for (const ParameterBook::Place place : { ParameterBook::First, ParameterBook::Second }) {
        const bool isFresh = m_book.side(place).isFresh(m_book.now());
        isOther = isOther || isFresh != m_wasFresh[place];
        m_wasFresh[place] = isFresh;
    }
    if (isOther)
        rebuild();
}

int ParameterTable::countedStation() const
{
    for (const ParameterBook::Place place : { ParameterBook::Second, ParameterBook::First }) {
        const ParameterSide &side = m_book.side(place);
        if (side.kind == ParameterSide::Kind::Drive)
            return side.set.station;
    }
    return 0;
}

int ParameterTable::tickable() const
{
    return static_cast<int>(std::count_if(m_rows.begin(), m_rows.end(),
                                          [this](int address) { return m_book.canTick(address); }));
}

bool ParameterTable::areAllTicked() const
{
    return tickable() > 0 && std::all_of(m_rows.begin(), m_rows.end(), [this](int address) {
               return !m_book.canTick(address) || m_book.isTicked(address);
           });
}

void ParameterTable::tickAll(bool isOn)
{
    m_book.tick(m_rows, isOn);
}

QString ParameterTable::nameOf(int address) const
{
    const ParameterNames::Label *label = m_book.names().find(countedStation(), address);
    return label ? label->name : QString();
}

QString ParameterTable::valueText(ParameterBook::Place place, int address) const
{
    const ParameterSide &side = m_book.side(place);
    switch (side.known(address)) {
    case Known::NotRead:
        return Shown::dashes();
    case Known::Absent:
        return tr("refused");
    case Known::Value:
        break;
    }
    return quantityText(m_book.names().find(side.set.station, address), *side.value(address));
}

QString ParameterTable::classText(int address) const
{
    if (!m_book.isCompared())
        return {};
    switch (m_book.classOf(address)) {
    case RowClass::Equal:
        return tr("equal");
    case RowClass::Differ:
        return m_book.isTicked(address) ? tr("to write") : tr("differs");
    case RowClass::OnlyHere:
        return tr("only left");
    case RowClass::OnlyThere:
        return tr("only right");
    case RowClass::NotRead:
        return tr("not read");
    }
    return {};
}

QString ParameterTable::text(int address, int column) const
{
    switch (column) {
    case Number:
        return parameterNumber(address);
    case Name:
        return nameOf(address);
    case First:
    case Second:
        return valueText(placeOf(column), address);
    case Class:
        return classText(address);
    case Written: {
        const int station = countedStation();
        const auto writes = m_journal.writes(station, address);
        return station != 0 && writes ? QString::number(*writes) : Shown::dashes();
    }
    default:
        return {};
    }
}

QString ParameterTable::spoken(int address) const
{
    QStringList parts { QStringLiteral("F ") + parameterNumber(address), nameOf(address) };
    for (const int column : { First, Second })
        parts.append(text(address, column));
    parts.append(classText(address));
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

QVariant ParameterTable::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const int address = m_rows.at(index.row());
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
        return column == Tick ? QVariant() : text(address, column);
    case Qt::CheckStateRole:
        if (column != Tick || !m_book.canTick(address))
            return {};
        return static_cast<int>(m_book.isTicked(address) ? Qt::Checked : Qt::Unchecked);
    case Qt::AccessibleTextRole:
        return spoken(address);
    case AddressRole:
        return address;
    case ClassRole:
        return m_book.isCompared() ? static_cast<int>(m_book.classOf(address)) : -1;
    case OldRole: {
        const ParameterSide &side = m_book.side(placeOf(column));
        const bool isValue = column == First || column == Second;
        return isValue && side.kind == ParameterSide::Kind::Drive && !side.isFresh(m_book.now());
    }
    case PendingRole:
        return m_book.isTicked(address);
    case CanTickRole:
        return m_book.canTick(address);
    default:
        return {};
    }
}

bool ParameterTable::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role != Qt::CheckStateRole
        || index.column() != Tick)
        return false;
    const int address = m_rows.at(index.row());
    if (!m_book.canTick(address))
        return false;
    m_book.tick({ address }, value.toInt() == Qt::Checked);
    return true;
}

Qt::ItemFlags ParameterTable::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (index.column() == Tick && m_book.canTick(m_rows.at(index.row())))
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

QVariant ParameterTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole) {
        const bool isNumber = section == First || section == Second || section == Written;
        return static_cast<int>((isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Number:
        return tr("F");
    case Name:
        return tr("Name");
    case First:
    case Second:
        return sideCaption(m_book, placeOf(section));
    case Class:
        return tr("State");
    case Written:
        return tr("Written");
    default:
        return {};
    }
}

} // namespace dx4::panel
