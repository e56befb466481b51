// SPDX-License-Identifier: MIT
// Notices in what a line shows when a drive's fault comes, changes or goes.
#pragma once

#include "host/service/line_snapshot.h"
#include "journal/records.h"

#include <QMap>

#include <map>

namespace dx4::journal {

/// What status words and fault codes say, as Config::states and Config::faults.
struct Words {
    QMap<int, QString> states; ///< by bit
    QMap<int, QString> faults; ///< by code
};

/// Follows "FU" of the stations of one line, 0 being no fault, and puts "SW" beside it.
class FaultWatch {
public:
    void setWords(const Words &words) { m_words = words; }

    /// Takes values that changed.
    ///
    /// @return an event for each fault that came, changed or went; also for one that is there when
    ///         a station is seen for the first time
    QVector<Event> see(const QVector<host::RegisterValue> &values);

private:
    QString faultText(int station, int code) const;
    QString stateText(int station) const;

    Words m_words;
    std::map<int, int> m_faults; ///< codes, by station
    std::map<int, int> m_states; ///< status words, by station
};

} // namespace dx4::journal
