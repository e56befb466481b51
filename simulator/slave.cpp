// SPDX-License-Identifier: MIT
// One station's side of the protocol: takes a request's bytes, gives the reply's.
#include "simulator/slave.h"

#include "simulator/inverter.h"
#include "simulator/register_map.h"
#include "wire/limits.h"

#include <modbus/modbus.h>

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace dx4::sim {

namespace {

constexpr unsigned readFunction = MODBUS_FC_READ_HOLDING_REGISTERS;
constexpr unsigned writeOneFunction = MODBUS_FC_WRITE_SINGLE_REGISTER;
constexpr unsigned writeSeveralFunction = MODBUS_FC_WRITE_MULTIPLE_REGISTERS;

// The whole request lies in the socket before libmodbus looks, so waiting could only delay a
// refusal. Zero would mean "for ever".
constexpr std::uint32_t shortestWait = 1; // microseconds

struct MappingDeleter {
    void operator()(modbus_mapping_t *mapping) const { modbus_mapping_free(mapping); }
};
using Mapping = std::unique_ptr<modbus_mapping_t, MappingDeleter>;

Mapping mappingOf(const Band &band)
{
    return Mapping(modbus_mapping_new_start_address(0, 0, 0, 0, band.first, band.count, 0, 0));
}

/// Registers that the request writes; only asked of requests that libmodbus took.
std::uint16_t writtenCount(const Bytes &request)
{
    return request[1] == writeOneFunction ? std::uint16_t { 1 } : wordAt(request, 4);
}

/// Whether a write carries as many values as it says; libmodbus refuses it otherwise.
bool isWholeWrite(const Bytes &request)
{
    if (request[1] == writeOneFunction)
        return true;
    const unsigned count = writtenCount(request);
    return count >= 1 && count <= MODBUS_MAX_WRITE_REGISTERS && request[6] == count * 2;
}

/// Whether one of the registers of a read or a write was taken away.
bool touchesRemoved(const Inverter &inverter, const Bytes &request)
{
    const unsigned first = wordAt(request, 2);
    const unsigned count = request[1] == writeOneFunction ? 1U : wordAt(request, 4);
    for (unsigned address = first; address < first + count && address <= 0xFFFFU; ++address) {
        const auto each = static_cast<std::uint16_t>(address);
        if (bandOf(each) && !inverter.has(each))
            return true;
    }
    return false;
}

bool valuesAccepted(const Inverter &inverter, const Bytes &request)
{
    const std::uint16_t first = wordAt(request, 2);
    const std::size_t values = request[1] == writeOneFunction ? 4 : 7;
    for (std::uint16_t i = 0; i < writtenCount(request); ++i) {
        const std::uint16_t value = wordAt(request, values + std::size_t { i } * 2);
        if (!inverter.accepts(static_cast<std::uint16_t>(first + i), value))
            return false;
    }
    return true;
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
        modbus_set_indication_timeout(context, 0, shortestWait);
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

    /// Everything that waits at `end`, which is empty afterwards.
    static Bytes drain(int end)
    {
        Bytes all;
        std::uint8_t part[MODBUS_MAX_ADU_LENGTH];
        for (ssize_t count; (count = read(end, part, sizeof part)) > 0;)
            all.insert(all.end(), part, part + count);
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

    static constexpr Band noBand = { 0, 0, false, false };
    const Band *band = bandOf(wordAt(request, 2));
    const bool allowed =
        band && (write ? band->writable : band->readable) && !touchesRemoved(m_inverter, request);
    replyFromBand(request, allowed ? *band : noBand, write);
}

void Slave::replyFromBand(const Bytes &request, const Band &band, bool write)
{
    const Mapping mapping = mappingOf(band);
    if (!mapping)
        return refuse(request, MODBUS_EXCEPTION_SLAVE_OR_SERVER_FAILURE);
    for (std::uint16_t i = 0; i < band.count && band.readable; ++i)
        mapping->tab_registers[i] = m_inverter.read(static_cast<std::uint16_t>(band.first + i));

    // Limits are judged only where libmodbus will find every register; otherwise the missing
    // register is the better answer.
    const unsigned first = wordAt(request, 2);
    const bool inside = write && isWholeWrite(request) && band.holds(wordAt(request, 2))
        && first + writtenCount(request) <= unsigned { band.first } + band.count;
    if (inside && !valuesAccepted(m_inverter, request))
        return refuse(request, MODBUS_EXCEPTION_ILLEGAL_DATA_VALUE);

    Line::drain(m_line->ours);
    modbus_reply(m_line->context, request.data(), static_cast<int>(request.size()), mapping.get());
    if (!inside)
        return;
    for (std::uint16_t i = 0; i < writtenCount(request); ++i) {
        const std::uint16_t address = static_cast<std::uint16_t>(first + i);
        m_inverter.write(address, mapping->tab_registers[address - band.first]);
    }
}

void Slave::refuse(const Bytes &request, unsigned exception)
{
    modbus_reply_exception(m_line->context, request.data(), exception);
}

} // namespace dx4::sim
