// SPDX-License-Identifier: MIT
// Whether a library's file is whole, looked at before it is mapped.
#include "host/link/elf_check.h"

#include "host/link/elf_records.h"

#include <algorithm>

#include <elf.h>
#include <link.h>

namespace dx4::host {
namespace {

/// End of `length` bytes from `offset` on; the highest number where that has no end.
quint64 endOf(quint64 offset, quint64 length)
{
    return offset + length < offset ? ~quint64 { 0 } : offset + length;
}

/// The last byte that the table of segments announces, itself and the segments.
quint64 endOfSegments(const QByteArray &bytes, const ElfW(Ehdr) & head)
{
    const auto size = static_cast<quint64>(bytes.size());
    const quint64 tableEnd = endOf(head.e_phoff, quint64 { head.e_phnum } * sizeof(ElfW(Phdr)));
    if (tableEnd > size)
        return tableEnd;
    quint64 end = tableEnd;
    for (unsigned i = 0; i < head.e_phnum; ++i) {
        const auto segment = recordAt<ElfW(Phdr)>(bytes, head.e_phoff + i * sizeof(ElfW(Phdr)));
        if (segment.p_type == PT_LOAD)
            end = std::max(end, endOf(segment.p_offset, segment.p_filesz));
    }
    return end;
}

} // namespace

QString wrongInElf(const QByteArray &bytes)
{
    const bool isElf = bytes.startsWith(ELFMAG);
    if (!isElf)
        return bytes.isEmpty() ? QStringLiteral("the file is empty")
                               : QStringLiteral("the file is no library; expected an ELF file");
    const auto size = static_cast<quint64>(bytes.size());
    if (size < sizeof(ElfW(Ehdr)))
        return QStringLiteral("the file is cut short: it has %1 bytes").arg(size);
    const auto head = recordAt<ElfW(Ehdr)>(bytes, 0);
    const quint64 sectionsEnd = endOf(head.e_shoff, quint64 { head.e_shnum } * head.e_shentsize);
    const quint64 end = std::max(sectionsEnd, endOfSegments(bytes, head));
    return end <= size
        ? QString()
        : QStringLiteral("the file is cut short: it has %1 of %2 bytes; copy it anew")
              .arg(size)
              .arg(end);
}

} // namespace dx4::host
