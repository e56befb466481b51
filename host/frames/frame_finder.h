// SPDX-License-Identifier: MIT
// Frames among the bytes that a line brings.
#pragma once

#include <QByteArray>
#include <QVector>

#include <functional>
#include <optional>
#include <vector>

namespace dx4::host {

/// Finds whole frames wherever they begin, each as soon as its last byte is there, but none inside
/// of another that is on its way. Every place is looked at once for each length, so that a line
/// that babbles costs no more than its bytes.
class FrameFinder {
public:
    /// Lengths that a frame may have which begins with these two bytes.
    using Lengths = std::function<QVector<int>(int station, int function)>;

    struct Found {
        QByteArray skipped; ///< what came before it and is no expected frame
        QByteArray frame; ///< its CRC is right
    };

    explicit FrameFinder(Lengths lengths);

    void add(const QByteArray &bytes);

    /// Takes the next frame out, and what lies before it.
    std::optional<Found> next();

    /// Bytes to wait for next: what is missing of a frame that has begun, else of the shortest one.
    int missing() const;

    /// What was added and not taken out.
    const QByteArray &rest() const { return m_bytes; }
    QByteArray takeRest();

    /// Expected lengths have changed: looks at the rest anew.
    void lookAgain();

private:
    struct Place {
        int start;
        int end;
    };

    void openPlaces();
    bool liesInAnother(const Place &place) const;
    bool announcesLength(const Place &place) const;

    Lengths m_lengths;
    QByteArray m_bytes;
    std::vector<Place> m_places; // where frames may begin that are not whole yet
    int m_opened = 0; // bytes before which every place is known
};

/// CRC of a frame's bytes ahead of its last two.
unsigned crcOf(const QByteArray &frame);

/// Whether the last two bytes are the CRC of those before them.
bool crcIsRight(const QByteArray &frame);

} // namespace dx4::host
