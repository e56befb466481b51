// SPDX-License-Identifier: MIT
// Parameter sets read from a station and restored to one.
#pragma once

#include "host/exchange/register_access.h"
#include "host/parameters/parameter_set.h"

#include <functional>

namespace dx4::host {

// Everything here goes through ordinary reads and writes. The two recipe request bytes of the
// shared block stay 0: while one is raised the driver repeats the request that it served last, all
// other reads and writes wait, and no transfer comes of it, as nothing fills its transfer list.

/// Called as a job goes on; `done` of `total` registers are settled.
using TransferProgress = std::function<void(int done, int total)>;

/// Reads the F registers that `set` does not have yet, from set.station.
///
/// A station that refuses a block is asked register by register; what it refuses then is noted in
/// the set. When the station or the line does not answer the set keeps what was read, and another
/// call goes on from there.
///
/// @param error  out: why it broke off; may be null
/// @return true when the set is complete
bool readParameters(RegisterAccess &access, ParameterSet &set, QString *error,
                    const TransferProgress &progress = {});

/// What a restore came to. Each register of the set is verified, refused, remaining or unseen.
struct RestoreReport {
    int compared = 0; ///< registers read and compared before the first write
    int written = 0; ///< registers that differed and took the write
    int verified = 0; ///< registers that held what is wanted when they were last read
    QStringList refused; ///< one line per register that the station refused to tell or to take
    QVector<ParameterDifference> remaining; ///< the rest that differs; first: wanted, second: held
    int unseen =
        0; ///< registers not read, or not since the last write: what they hold is not known
    QString interrupted; ///< why it broke off; empty when it came to its end

    /// Whether the station was seen to hold every value of the set.
    bool isRestored() const
    {
        return interrupted.isEmpty() && refused.isEmpty() && remaining.isEmpty();
    }
};

/// Makes a station hold the values of a set.
///
/// The station is read first and only what differs is written, as drives wear out their memory.
/// Afterwards everything is read once more: a write may change other parameters. A restore that
/// broke off is taken up by calling it again, what was written before no longer differs. What had
/// been written by then counts as unseen until it is read, as do registers that were equal: a write
/// may change others.
/// Parameters that the drive locks while it runs are refused by it and reported, each with the
/// exception; they are not among those that still differ.
///
/// @param station  need not be the set's own
RestoreReport restoreParameters(RegisterAccess &access, int station, const ParameterSet &wanted,
                                const TransferProgress &progress = {});

} // namespace dx4::host
