// SPDX-License-Identifier: MIT
// The record of a list that has run empty, kept to be filled again.
#pragma once

#include <QList>

namespace dx4 {

/// A request takes one record of a kilobyte or two as a rule, and puts it into a list that was
/// empty. Keeping that record saves allocating and freeing it with every request.
template <typename Record> class SpareRecord {
public:
    /// Adds a record at the tail, to be filled: what it holds means nothing.
    Record &appendTo(QList<Record> &list)
    {
        const bool canReuse = list.isEmpty() && m_spare.size() == 1;
        if (canReuse)
            list.swap(m_spare);
        else
            list.append(Record());
        return list.last();
    }

    /// Removes the head; nothing happens to an empty list.
    void removeHead(QList<Record> &list)
    {
        if (list.size() < 2)
            clear(list);
        else
            list.removeFirst();
    }

    /// Removes every record.
    void clear(QList<Record> &list)
    {
        if (list.size() == 1)
            list.swap(m_spare);
        if (!list.isEmpty())
            list.clear();
    }

private:
    QList<Record> m_spare; // one record or none
};

} // namespace dx4
