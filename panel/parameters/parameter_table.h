// SPDX-License-Identifier: MIT
// The rows of the parameters that are looked at.
#pragma once

#include "panel/parameters/parameter_book.h"
#include "panel/parameters/parameter_journal.h"

#include <QAbstractTableModel>

namespace dx4::panel {

/// Registers of a group, or all; of two sides only what differs, unless more is wanted. A search
/// finds equal ones as well.
class ParameterTable : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Tick, Number, Name, First, Second, Class, Written, ColumnCount };
    enum Role {
        AddressRole = Qt::UserRole, ///< int, internal address
        ClassRole, ///< int of RowClass; -1 where there is one side alone
        OldRole, ///< bool: the value was read some time ago
        PendingRole, ///< bool: ticked and so far not written
        CanTickRole, ///< bool
    };
    static constexpr int allGroups = -1;

    /// @param journal  without a file there is no column of writes
    ParameterTable(ParameterBook &book, ParameterJournal &journal, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void setGroup(int group);
    int group() const { return m_group; }

    /// Part of a number, a name or the register, "8.2", "ramp", "0xF802"; empty: all.
    void setSearch(const QString &text);
    const QString &search() const { return m_search; }

    void setOnlyDifferences(bool isOn);
    bool isOnlyDifferences() const { return m_isOnlyDifferences; }

    /// Ticks all rows that are there, or takes their ticks away.
    void tickAll(bool isOn);
    bool areAllTicked() const;
    int tickable() const;

    /// Lets time pass: values get old.
    void look();

    int addressOf(int row) const { return m_rows.at(row); }
    int rowOf(int address) const { return static_cast<int>(m_rows.indexOf(address)); }

    /// Station whose writes are counted: the drive that is written to, else the other one; 0: none.
    int countedStation() const;

private:
    bool isWanted(int address) const;
    bool isFound(int address) const;
    void rebuild();
    QString nameOf(int address) const;
    QString valueText(ParameterBook::Place place, int address) const;
    QString classText(int address) const;
    QString text(int address, int column) const;
    QString spoken(int address) const;

    ParameterBook &m_book;
    ParameterJournal &m_journal;
    QVector<int> m_rows; // addresses, ascending
    int m_group = allGroups;
    QString m_search;
    bool m_isOnlyDifferences = true;
    bool m_wasFresh[2] = { false, false };
};

} // namespace dx4::panel
