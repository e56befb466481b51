// SPDX-License-Identifier: MIT
// The least that a plug-in with Qt strings does: one table of names, one exported function.
#include <QString>

namespace {

const QString names[] = { QLatin1String("F"),   QLatin1String("D"),  QLatin1String("CW"),
                          QLatin1String("FRE"), QLatin1String("SW"), QLatin1String("FU") };

} // namespace

/// Gives one of the six names.
extern "C" __attribute__((visibility("default"))) void nearEmptyName(int index, QString &name)
{
    name = names[index];
}
