// SPDX-License-Identifier: MIT
// One station's side of the protocol: takes a request's bytes, gives the reply's.
#include "simulator/slave.h"

#include "simulator/inverter.h"
#include "simulator/register_map.h"
#include "wire/limits.h"

#include <modbus/modbus.h>

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace dx4::sim {

namespace {

struct Written {
    std::uint16_t address;
    std::uint16_t value;
};

constexpr unsigned readFunction = MODBUS_FC_READ_HOLDING_REGISTERS;
constexpr unsigned writeOneFunction = MODBUS_FC_WRITE_SINGLE_REGISTER;
constexpr unsigned writeSeveralFunction = MODBUS_FC_WRITE_MULTIPLE_REGISTERS;

// The whole request lies in the socket before libmodbus looks, so waiting for its rest, or before a
// refusal, could only delay. Zero would mean "for ever".
constexpr std::uint32_t shortestWait = 1; // microseconds

/// Registers that the request reads or writes, as it says; only asked of requests that libmodbus
/// took.
std::uint16_t registerCount(const Bytes &request)
{
    return request[1] == writeOneFunction ? std::uint16_t { 1 } : wordAt(request, 4);
}

/// Whether a write carries as many values as it says; libmodbus refuses it otherwise.
bool isWholeWrite(const Bytes &request)
{
    return request[1] == writeOneFunction || request[6] == registerCount(request) * 2;
}

/// What a whole write asks for.
std::vector<Written> writesOf(const Bytes &request)
{
    std::vector<Written> writes;
    const std::size_t values = request[1] == writeOneFunction ? 4 : 7;
    for (std::size_t i = 0; i < registerCount(request); ++i)
        writes.push_back({ static_cast<std::uint16_t>(wordAt(request, 2) + i),
                           wordAt(request, values + i * 2) });
    return writes;
}

/// The band that holds every register of the request, as far as it allows the access; null where it
/// does not, or where the station lacks one of them.
const Band *bandFor(const Inverter &inverter, const Bytes &request, bool write)
{
    const std::uint16_t first = wordAt(request, 2);
    const Band *band = bandOf(first);
    if (!band || !(write ? band->writable : band->readable))
        return nullptr;
    for (unsigned i = 0; i < registerCount(request); ++i) {
        const auto address = static_cast<std::uint16_t>(first + i);
        if (!band->holds(address) || !inverter.has(address))
            return nullptr;
    }
    return band;
}

} // namespace

/// The libmodbus context and the socket pair it believes to be its serial line.
struct Slave::Line {
    Line()
    {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) != 0)
            throw std::system_error(errno, std::generic_category(), "socketpair");
        ours = ends[0];
        theirs = ends[1];
        // Never opened: the context only needs a name that is not empty.
        context = modbus_new_rtu("line", 9600, 'N', 8, 1);
        if (!context) {
            closeEnds();
            throw std::system_error(errno, std::generic_category(), "modbus_new_rtu");
        }
        modbus_set_socket(context, theirs);
        modbus_set_response_timeout(context, 0, shortestWait);
        modbus_set_byte_timeout(context, 0, shortestWait);
    }

    ~Line()
    {
        modbus_free(context);
        closeEnds();
    }

    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;

    void closeEnds() const
    {
        close(ours);
        close(theirs);
    }

    /// What waits at `end`, which is empty afterwards: one frame at most.
    static Bytes drain(int end)
    {
        Bytes all(MODBUS_MAX_ADU_LENGTH);
        const ssize_t count = read(end, all.data(), all.size());
        all.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        return all;
    }

    modbus_t *context = nullptr;
    int ours = -1;
    int theirs = -1;
};

Slave::Slave(int station, Inverter &inverter)
    : m_station(station)
    , m_inverter(inverter)
{
    if (station < 1 || station > lastStation)
        throw std::invalid_argument("station " + std::to_string(station) + ": expected 1 to 247");
    m_line = std::make_unique<Line>();
    modbus_set_slave(m_line->context, station);
}

Slave::~Slave() = default;

bool Slave::isForUs(const Bytes &request) const
{
    if (request.size() < smallestFrame || request.size() > MODBUS_RTU_MAX_ADU_LENGTH)
        return false;
    return request[0] == m_station || request[0] == MODBUS_BROADCAST_ADDRESS;
}

Bytes Slave::answer(const Bytes &request)
{
    if (!isForUs(request))
        return {};
    reply(request);
    // What libmodbus left unread must not lead the next request.
    Line::drain(m_line->theirs);
    Bytes answered = Line::drain(m_line->ours);
    if (request[0] == MODBUS_BROADCAST_ADDRESS)
        return {};
    return answered;
}

void Slave::reply(const Bytes &request)
{
    const unsigned function = request[1];
    const bool write = function == writeOneFunction || function == writeSeveralFunction;
    if (!write && function != readFunction) {
        // libmodbus cannot tell the length of a function it does not know, but the line can: a
        // frame ends where the bytes end.
        if (hasGoodCrc(request))
            refuse(request, MODBUS_EXCEPTION_ILLEGAL_FUNCTION);
        return;
    }

    if (::write(m_line->ours, request.data(), request.size())
        != static_cast<ssize_t>(request.size()))
        return;
    std::uint8_t taken[MODBUS_MAX_ADU_LENGTH];
    const int length = modbus_receive(m_line->context, taken);
    // More bytes than the request needs are one broken frame, not a frame and a rest.
    if (length != static_cast<int>(request.size()))
        return;

    static constexpr Band noBand {};
    const Band *band = bandFor(m_inverter, request, write);
    replyFromBand(request, band ? *band : noBand, write);
}

void Slave::replyFromBand(const Bytes &request, const Band &band, bool write)
{
    // Limits are judged only where libmodbus will find every register; otherwise the missing
    // register is the better answer.
    const bool isObeyed = write && band.holds(wordAt(request, 2)) && isWholeWrite(request);
    const std::vector<Written> writes = isObeyed ? writesOf(request) : std::vector<Written> {};
    const bool accepted = std::all_of(writes.begin(), writes.end(), [this](const Written &each) {
        return m_inverter.accepts(each.address, each.value);
    });
    if (!accepted)
        return refuse(request, MODBUS_EXCEPTION_ILLEGAL_DATA_VALUE);

    std::vector<std::uint16_t> registers;
    for (std::uint16_t i = 0; i < band.count; ++i)
        registers.push_back(m_inverter.read(static_cast<std::uint16_t>(band.first + i)));
    modbus_mapping_t mapping {};
    mapping.start_registers = band.first;
    mapping.nb_registers = static_cast<int>(registers.size());
    mapping.tab_registers = registers.data();
    modbus_reply(m_line->context, request.data(), static_cast<int>(request.size()), &mapping);
    for (const Written &each : writes)
        m_inverter.write(each.address, each.value);
}

void Slave::refuse(const Bytes &request, unsigned exception)
{
    modbus_reply_exception(m_line->context, request.data(), exception);
}

} // namespace dx4::sim
