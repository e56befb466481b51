// SPDX-License-Identifier: MIT
// Frames among the bytes that a line brings.
#include "host/frames/frame_finder.h"

#include "host/frames/modbus_frame.h"
#include "wire/crc16.h"

#include <algorithm>
#include <utility>

namespace dx4::host {
namespace {

constexpr int aroundReadData = 5; // station, function, byte count, CRC
constexpr int aroundValues = 9; // of a write of several: head and CRC
constexpr int valueCountByte = 6; // of a write of several

} // namespace

FrameFinder::FrameFinder(Lengths lengths)
    : m_lengths(std::move(lengths))
{
}

void FrameFinder::add(const QByteArray &bytes)
{
    m_bytes += bytes;
    openPlaces();
}

void FrameFinder::openPlaces()
{
    for (; m_opened + 1 < m_bytes.size(); ++m_opened) {
        const auto lengths = m_lengths(byteAt(m_bytes, m_opened), byteAt(m_bytes, m_opened + 1));
        for (int length : lengths)
            m_places.push_back({ m_opened, m_opened + length });
    }
}

/// A place stays only until its last byte is there: each is judged once.
std::optional<FrameFinder::Found> FrameFinder::next()
{
    for (auto place = m_places.begin(); place != m_places.end();) {
        if (place->end > m_bytes.size()) {
            ++place;
            continue;
        }
        const QByteArray frame = m_bytes.mid(place->start, place->end - place->start);
        if (!crcIsRight(frame)) {
            place = m_places.erase(place);
            continue;
        }
        if (liesInAnother(*place)) {
            ++place;
            continue;
        }
        Found found { m_bytes.left(place->start), frame };
        m_bytes.remove(0, place->end);
        lookAgain();
        return found;
    }
    return std::nullopt;
}

/// Registers may hold the bytes of a frame. They are none while what they lie in is on its way and
/// has announced just the length that is expected.
bool FrameFinder::liesInAnother(const Place &place) const
{
    return std::any_of(m_places.begin(), m_places.end(), [&](const Place &other) {
        return other.start < place.start && other.end > m_bytes.size() && announcesLength(other);
    });
}

bool FrameFinder::announcesLength(const Place &place) const
{
    const int length = place.end - place.start;
    const QByteArray begun = m_bytes.mid(place.start, length);
    const auto holds = [&begun](int position, int number) {
        return position < begun.size() && byteAt(begun, position) == number;
    };
    return (holds(functionByte, ReadHoldingRegisters)
            && holds(byteCountByte, length - aroundReadData))
        || (holds(functionByte, WriteMultipleRegisters)
            && holds(valueCountByte, length - aroundValues));
}

int FrameFinder::missing() const
{
    // A frame that seems to have begun is waited for as a whole: waking up for what might begin
    // inside it costs more than the rare frame behind two bytes of junk that look like a beginning.
    const auto nearest =
        std::min_element(m_places.begin(), m_places.end(),
                         [](const Place &a, const Place &b) { return a.end < b.end; });
    const int mayBegin = std::max(lengthOf(m_bytes) - 1, 0); // the last byte may be a station
    const int end = nearest == m_places.end() ? mayBegin + exceptionLength : nearest->end;
    return std::max(end - lengthOf(m_bytes), 1);
}

QByteArray FrameFinder::takeRest()
{
    QByteArray rest = std::exchange(m_bytes, QByteArray());
    lookAgain();
    return rest;
}

void FrameFinder::lookAgain()
{
    m_places.clear();
    m_opened = 0;
    openPlaces();
}

unsigned crcOf(const QByteArray &frame)
{
    return crc16(reinterpret_cast<const unsigned char *>(frame.constData()),
                 lengthOf(frame) - crcBytes);
}

bool crcIsRight(const QByteArray &frame)
{
    const auto crc = static_cast<int>(crcOf(frame));
    const int length = lengthOf(frame);
    return length > crcBytes && byteAt(frame, length - 2) == (crc & 0xFF)
        && byteAt(frame, length - 1) == crc >> 8;
}

} // namespace dx4::host
