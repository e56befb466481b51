// SPDX-License-Identifier: MIT
// Tells the host that a cached value has changed.
#pragma once

#include "host_records.h"
#include "korvane_dx4.h"
#include "korvane_dx4/data_area_index.h"

#include <QString>

namespace dx4 {

/// Calls the host's callback, if there is one. The host may call back in.
///
/// @param name  handed over as a copy that the host may change
void notifyHost(int linkId, int station, const QString &name, int address);

/// Whether a changed register reports its single bits as well.
enum class BitReports { Included, LeftOut };

/// Reports changed registers of one station and type: single bits, then the register, then values
/// of two registers, each as marked in its record.
class ChangeReport {
public:
    /// @param name  of the type; must outlive this
    ChangeReport(int station, const QString &name)
        : m_station(station)
        , m_regType(name)
    {
    }
    ChangeReport(const ChangeReport &) = delete;
    ChangeReport &operator=(const ChangeReport &) = delete;

    /// The host may call back in, and edit the list that the record stands in. Equal values report
    /// nothing.
    void report(const _DATA_ &area, int address, int valueA, int valueB,
                BitReports bits = BitReports::Included)
    {
        if (valueA == valueB || !driver.valueChangeCallback)
            return;
        if (area.bitMask == 0 && area.flags == plainMark)
            return reportRegister(address);
        const int bitMask = bits == BitReports::Included ? area.bitMask : 0;
        reportMarked(area.flags, bitMask, address, valueA, valueB);
    }

private:
    static constexpr int plainMark = 1; // a value of its own and nothing besides

    void reportRegister(int address)
    {
        // One copy for all registers, as counting references costs as much as storing a value. The
        // host may have changed it.
        if (!m_lent.isSharedWith(m_regType))
            m_lent = m_regType;
        dataAreaIndex.noteHostCalled();
        driver.valueChangeCallback(driver.linkId, m_station, m_lent, address);
    }

    void reportMarked(int flags, int bitMask, int address, int valueA, int valueB);
    void reportBits(int bitMask, int address, int valueA, int valueB);
    void reportDoubles(int flags, int address);

    int m_station;
    const QString &m_regType;
    QString m_lent; // what the callback gets
};

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
