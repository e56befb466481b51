// SPDX-License-Identifier: MIT
// How far a scan has come, kept in a file between two runs.
#pragma once

#include <QString>
#include <QVector>

#include <optional>

namespace dx4::cli {

struct ScanState {
    int next = 1; ///< station to ask next
    QVector<int> found;
};

/// Reads the file. @return nothing when it cannot be read or holds something else
std::optional<ScanState> loadScanState(const QString &file);

/// @return whether it could be written
bool saveScanState(const QString &file, const ScanState &state);

} // namespace dx4::cli
