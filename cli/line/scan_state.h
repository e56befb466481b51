// SPDX-License-Identifier: MIT
// How far a scan has come, kept in a file between two runs.
#pragma once

#include "wire/limits.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

namespace dx4::cli {

struct ScanState {
    int from = 1; ///< first station of the scan
    int to = lastStation; ///< last station
    int next = 1; ///< station to ask next; behind the last one when all were asked
    QVector<int> found;
};

/// Reads the file. @return nothing when it cannot be read or holds something else
std::optional<ScanState> loadScanState(const QString &file);

/// The same from the file's content.
std::optional<ScanState> parseScanState(const QByteArray &text);

/// Whether a scan of these stations may go on where the state ends, and drop it when it is through:
/// it passes no station over and leaves none of the state's unasked.
bool goesOn(const ScanState &state, int from, int to);

/// @param error  out: which file and why it could not be written
bool saveScanState(const QString &file, const ScanState &state, QString *error);

/// Keeps the state in a file, as long as that takes it.
class ScanKeeper {
public:
    /// @param file  empty: nothing is kept
    explicit ScanKeeper(QString file);

    void keep(const ScanState &state);

    /// The scan is through; the next one begins anew.
    void drop();

    bool failed() const { return m_failed; }
    bool isKept() const { return !m_file.isEmpty() && !m_failed; }

private:
    QString m_file;
    bool m_failed = false;
};

} // namespace dx4::cli
