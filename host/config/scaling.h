// SPDX-License-Identifier: MIT
// From a register's 16 bits to the quantity that a user reads, and back.
#pragma once

#include <QString>

#include <optional>

namespace dx4::host {

/// quantity = register * factor + offset.
struct Scaling {
    double factor = 1.0; ///< not 0
    double offset = 0.0;
    bool isSigned = false; ///< the register counts from -32768 to 32767, else from 0 to 65535
    int decimals = 0; ///< digits behind the point that are shown, 0 to 6
    QString unit; ///< shown behind the quantity; may be empty

    double quantity(quint16 value) const;

    /// The register value nearest to a quantity; nothing when no register value is as far as that.
    std::optional<quint16> registerValue(double quantity) const;

    /// "49.98 Hz".
    QString text(quint16 value) const;
};

} // namespace dx4::host
