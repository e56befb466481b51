// SPDX-License-Identifier: MIT
// What parameters are called.
#pragma once

#include "host/config/config.h"

#include <map>
#include <utility>

namespace dx4::panel {

/// Names and scaling of F registers, as a configuration has them.
class ParameterNames {
public:
    struct Label {
        QString name;
        host::Scaling scaling;
    };

    explicit ParameterNames(const host::Config &config);

    /// Null where the configuration does not name the register. A station without a name for it
    /// borrows that of another one, as the drives of a line are of one kind.
    const Label *find(int station, int address) const;

private:
    std::map<std::pair<int, int>, Label> m_labels; // by station and address
    std::map<int, Label> m_ofAny; // by address
};

/// "12.0 s" where the register has a scaling, else "120".
QString quantityText(const ParameterNames::Label *label, quint16 value);

/// Number of the group that an address is of, 0 to 10.
int groupOf(int address);

/// "0" to "9" and "c".
QString groupText(int group);

/// "8.2" as the drive shows it.
QString parameterNumber(int address);

} // namespace dx4::panel
