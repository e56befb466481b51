// SPDX-License-Identifier: MIT
// What a library needs to be loaded, looked up in its file before anything of it runs.
#include "host/link/elf_needs.h"

#include "host/link/elf_records.h"

#include <elf.h>
#include <link.h>

#include <vector>

namespace dx4::host {
namespace {

using Segment = ElfW(Phdr);
using Entry = ElfW(Dyn);
using Size = decltype(QByteArray().size());

// More than any linker writes; a damaged table could announce as many as the file has bytes.
constexpr std::size_t mostNeeded = 1000;
constexpr Size longestName = 4096; // bytes, as long as a path may be

/// What the dynamic section says of names: their places in a table, and where that is loaded.
struct Names {
    std::vector<quint64> places;
    quint64 tableAddress = 0;
    quint64 tableLength = 0;
};

std::optional<std::vector<Segment>> segmentsOf(const QByteArray &bytes)
{
    using Head = ElfW(Ehdr);
    if (!liesWithin(bytes, 0, sizeof(Head)))
        return std::nullopt;
    const auto head = recordAt<Head>(bytes, 0);
    const bool isKnown = head.e_phnum == 0 || head.e_phentsize == sizeof(Segment);
    if (!isKnown || !liesWithin(bytes, head.e_phoff, quint64 { head.e_phnum } * sizeof(Segment)))
        return std::nullopt;
    std::vector<Segment> segments;
    for (unsigned i = 0; i < head.e_phnum; ++i)
        segments.push_back(recordAt<Segment>(bytes, head.e_phoff + i * sizeof(Segment)));
    return segments;
}

/// Of a segment that lies within the bytes.
Names namesIn(const QByteArray &bytes, const Segment &dynamic)
{
    Names names;
    const quint64 count = dynamic.p_filesz / sizeof(Entry);
    for (quint64 i = 0; i < count; ++i) {
        const auto entry = recordAt<Entry>(bytes, dynamic.p_offset + i * sizeof(Entry));
        if (entry.d_tag == DT_NULL)
            break;
        if (entry.d_tag == DT_NEEDED)
            names.places.push_back(entry.d_un.d_val);
        else if (entry.d_tag == DT_STRTAB)
            names.tableAddress = entry.d_un.d_ptr;
        else if (entry.d_tag == DT_STRSZ)
            names.tableLength = entry.d_un.d_val;
    }
    return names;
}

/// The bytes that are loaded at an address; nothing where not all of them come from the file.
std::optional<QByteArray> loadedAt(const QByteArray &bytes, const std::vector<Segment> &segments,
                                   quint64 address, quint64 length)
{
    for (const Segment &segment : segments) {
        if (segment.p_type != PT_LOAD || address < segment.p_vaddr)
            continue;
        const quint64 distance = address - segment.p_vaddr;
        const bool isHere = distance <= segment.p_filesz && length <= segment.p_filesz - distance;
        if (isHere && liesWithin(bytes, segment.p_offset, segment.p_filesz))
            return bytes.mid(static_cast<Size>(segment.p_offset + distance),
                             static_cast<Size>(length));
    }
    return std::nullopt;
}

std::optional<QByteArrayList> namesOf(const Names &names, const QByteArray &table)
{
    if (names.places.size() > mostNeeded)
        return std::nullopt;
    QByteArrayList list;
    for (const quint64 place : names.places) {
        const auto begin = static_cast<Size>(place);
        const Size end = liesWithin(table, place, 1) ? table.indexOf('\0', begin) : -1;
        if (end < 0 || end - begin > longestName)
            return std::nullopt;
        list.append(table.mid(begin, end - begin));
    }
    return list;
}

/// Of "libQt6Core.so.6" 6; 0 for other libraries.
int qtMajorOf(const QByteArray &library)
{
    constexpr int digitPlace = 5;
    const bool isCore =
        library.startsWith("libQt") && library.mid(digitPlace + 1).startsWith("Core.so");
    return isCore ? library.mid(digitPlace, 1).toInt() : 0;
}

} // namespace

std::optional<QByteArrayList> neededLibraries(const QByteArray &bytes)
{
    const auto segments = segmentsOf(bytes);
    if (!segments)
        return std::nullopt;
    for (const Segment &segment : *segments) {
        if (segment.p_type != PT_DYNAMIC)
            continue;
        if (!liesWithin(bytes, segment.p_offset, segment.p_filesz))
            return std::nullopt;
        const Names names = namesIn(bytes, segment);
        if (names.places.empty())
            break;
        const auto table = loadedAt(bytes, *segments, names.tableAddress, names.tableLength);
        return table ? namesOf(names, *table) : std::nullopt;
    }
    return QByteArrayList();
}

QString wrongQtOfElf(const QByteArray &bytes, int ownMajor)
{
    const auto libraries = neededLibraries(bytes);
    if (!libraries)
        return QStringLiteral("the file is damaged: what it needs cannot be read; copy it anew");
    for (const QByteArray &library : *libraries) {
        const int major = qtMajorOf(library);
        if (major != 0 && major != ownMajor)
            return QStringLiteral("the file is built for Qt %1, this program for Qt %2; expected "
                                  "the file of the folder korvane_dx4/qt%2")
                .arg(major)
                .arg(ownMajor);
    }
    return {};
}

} // namespace dx4::host
