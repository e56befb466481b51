// SPDX-License-Identifier: MIT
// The lower bound: the least that gives a host the same frames, values and reports.
#pragma once

#include "host_records.h"
#include "korvane_dx4.h"
#include "record_table.h"

#include <QByteArray>
#include <QList>

#include <memory>
#include <vector>

namespace bench {

/// Does the record copies that the boundary asks for (what is served, its frame, the frame handed
/// out), a CRC of eight bytes a step and an index over the records, and nothing else: no recipe
/// transfers, no lock, no retries, no error line, no host that edits the lists.
class Limit {
public:
    /// Starts afresh.
    void start(int blockSize, ValueChangeCallback callback);

    /// As intf_addrMerge.
    int merge(QList<KEY_ADDRESS> &addresses);

    /// As intf_getSendFrame.
    bool sendFrame(FRAME_PRO &out);

    /// As intf_dealRcvFrame without the error line; false for a reply that does not fit.
    bool takeReply(const QByteArray &reply);

    /// As intf_getData.
    int getData(int station, QString regType, int address, int count, unsigned char *out);

    /// As intf_setData of one register.
    void write(int station, QString regType, int address, const unsigned char *data);

private:
    void serve(const VARIABLE &var);
    void encode();
    void storeRegisters(const QByteArray &reply);
    bool store(_DATA_ &record, int type, unsigned char low, unsigned char high);
    bool report(const _DATA_ &record, int type);
    void lendName(int type);
    void settle(const VARIABLE &var);
    void markMonitored(const QList<KEY_ADDRESS> &addresses);

    RecordTable m_records;
    std::vector<std::unique_ptr<VARIABLE>> m_reads;
    std::size_t m_nextRead = 0;
    std::vector<VARIABLE> m_writes; // a ring
    std::size_t m_firstWrite = 0;
    std::size_t m_waitingWrites = 0;
    VARIABLE m_current;
    FRAME_PRO m_frame;
    QString m_lentName; // what the callback gets
    bool m_isBusy = false;
    bool m_isWrite = false;
    int m_blockSize = 0;
    ValueChangeCallback m_callback = nullptr;
};

} // namespace bench
