// SPDX-License-Identifier: MIT
// One station's side of the protocol: takes a request's bytes, gives the reply's.
#pragma once

#include "simulator/bytes.h"

#include <memory>

namespace dx4::sim {

class Inverter;
struct Band;

/// Answers for one station. libmodbus reads the request and builds the reply; the inverter decides
/// which register exists, may be read or written, and takes the value.
///
/// Function 3 reads, 6 and 16 write; any other function is answered with exception 1, a register
/// that does not exist or does not allow the access with 2, a value outside its limits with 3.
class Slave {
public:
    /// A station 1 to 247 in front of `inverter`, which must outlive it.
    /// Throws std::invalid_argument for another station and std::system_error when the system
    /// gives no socket pair.
    Slave(int station, Inverter &inverter);
    ~Slave();
    Slave(const Slave &) = delete;
    Slave &operator=(const Slave &) = delete;

    /// Station it answers for.
    int station() const { return m_station; }

    /// Takes one request, CRC included, and gives the reply, CRC included. Empty when there is
    /// none: another station, a broadcast (which is obeyed), a bad CRC, a length that does not fit.
    /// A write takes effect before the call returns. Waits for nothing.
    Bytes answer(const Bytes &request);

private:
    struct Line;

    bool isForUs(const Bytes &request) const;
    void reply(const Bytes &request);
    void replyFromBand(const Bytes &request, const Band &band, bool write);
    void refuse(const Bytes &request, unsigned exception);

    int m_station;
    Inverter &m_inverter;
    std::unique_ptr<Line> m_line;
};

} // namespace dx4::sim
