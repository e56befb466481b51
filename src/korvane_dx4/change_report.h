// SPDX-License-Identifier: MIT
// Tells the host that a cached value has changed.
#pragma once

#include "wire/register_type.h"

#include <QString>

namespace dx4 {

/// Calls the host's callback, if there is one. The host may call back in.
///
/// @param name  handed over as a copy that the host may change
void notifyHost(int linkId, int station, const QString &name, int address);

/// Whether a changed register reports its single bits as well.
enum class BitReports { Included, LeftOut };

/// A register whose value has changed; the name must outlive it.
struct ChangedRegister {
    int station;
    const QString &regType;
    RegisterType type; ///< of the name
    int address;
};

/// What _wordDataChange does once the record is found. Equal values report nothing.
///
/// @param position  the register's record in driver.dataAreas
void reportWordChange(int position, int valueA, int valueB, const ChangedRegister &changed,
                      BitReports bits = BitReports::Included);

} // namespace dx4

/// Reports a changed register: single bits, then the register, then two-register values, each as
/// marked in its record, which is created when it is missing.
///
/// @param valueA  the one value, 16 bits
/// @param valueB  the other; equal values report nothing
/// @param noBits  0 reports single bits as well
void _wordDataChange(int *valueA, int *valueB, int station, QString regType, int address,
                     int noBits);

/// Reports the changed bits of a byte.
///
/// Deliberate: unlike _wordDataChange it looks at 8 bits, gives the plain type name and counts the
/// bit onto the address itself. Nothing in the driver calls it.
void _byteDataChange(unsigned char *byteA, unsigned char *byteB, int station, QString regType,
                     int address);
