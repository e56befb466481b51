// SPDX-License-Identifier: MIT
// Files that end before what their tables announce.
#include "host/link/elf_check.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <elf.h>
#include <link.h>

using dx4::host::wrongInElf;

namespace {

/// A library of this machine with tables at places of the test's choice.
struct Library {
    Library()
    {
        std::memcpy(head.e_ident, ELFMAG, SELFMAG);
        head.e_shentsize = 64;
    }

    void addSegment(std::size_t type, std::size_t offset, std::size_t length)
    {
        ElfW(Phdr) segment = {};
        segment.p_type = static_cast<ElfW(Word)>(type);
        segment.p_offset = offset;
        segment.p_filesz = length;
        segments.push_back(segment);
        head.e_phoff = sizeof head;
        head.e_phnum = static_cast<ElfW(Half)>(segments.size());
    }

    /// What is wrong with its first `size` bytes.
    std::string wrongIn(int size) const
    {
        QByteArray bytes(reinterpret_cast<const char *>(&head), sizeof head);
        for (const ElfW(Phdr) & segment : segments)
            bytes.append(reinterpret_cast<const char *>(&segment), sizeof segment);
        bytes.append(4096, '\0');
        return wrongInElf(bytes.left(size)).toStdString();
    }

    ElfW(Ehdr) head = {};
    std::vector<ElfW(Phdr)> segments;
};

std::string cutShort(const std::string &lengths)
{
    return "the file is cut short: it has " + lengths;
}

constexpr int headLength = sizeof(ElfW(Ehdr));
constexpr int segmentLength = sizeof(ElfW(Phdr));

} // namespace

TEST(ElfCheck, WhatDoesNotBeginLikeALibraryIsNone)
{
    EXPECT_EQ(wrongInElf("").toStdString(), "the file is empty");
    EXPECT_EQ(wrongInElf("\x7f"
                         "EL")
                  .toStdString(),
              "the file is no library; expected an ELF file");
}

TEST(ElfCheck, AHeadIsNeededAsAWhole)
{
    const Library library;

    EXPECT_EQ(library.wrongIn(headLength - 1), cutShort(std::to_string(headLength - 1) + " bytes"));
    EXPECT_EQ(library.wrongIn(headLength), "");
}

TEST(ElfCheck, TheTableOfSectionsIsNeededAsAWhole)
{
    Library library;
    library.head.e_shoff = 1000;
    library.head.e_shnum = 3;

    EXPECT_EQ(library.wrongIn(1191), cutShort("1191 of 1192 bytes; copy it anew"));
    EXPECT_EQ(library.wrongIn(1192), "");
}

TEST(ElfCheck, TheTableOfSegmentsIsNeededAsAWhole)
{
    Library library;
    library.addSegment(PT_NOTE, 0, 0);
    library.addSegment(PT_NOTE, 0, 0);
    const int end = headLength + 2 * segmentLength;

    EXPECT_EQ(
        library.wrongIn(end - 1),
        cutShort(std::to_string(end - 1) + " of " + std::to_string(end) + " bytes; copy it anew"));
    EXPECT_EQ(library.wrongIn(end), "");
}

TEST(ElfCheck, EverySegmentThatIsLoadedIsNeededAsAWhole)
{
    Library library;
    library.addSegment(PT_LOAD, 0, 500);
    library.addSegment(PT_LOAD, 1000, 700);
    library.addSegment(PT_LOAD, 800, 100);

    EXPECT_EQ(library.wrongIn(1699), cutShort("1699 of 1700 bytes; copy it anew"));
    EXPECT_EQ(library.wrongIn(1700), "");
}

TEST(ElfCheck, ASegmentIsNeededThoughTheFileEndsWithTheirTable)
{
    Library library;
    library.addSegment(PT_LOAD, 1000, 700);
    const int end = headLength + segmentLength;

    EXPECT_EQ(library.wrongIn(end), cutShort(std::to_string(end) + " of 1700 bytes; copy it anew"));
}

TEST(ElfCheck, WhatLiesBehindTheTableIsNoSegment)
{
    Library library;
    library.addSegment(PT_NOTE, 0, 0);
    library.addSegment(PT_LOAD, 0, 5000);
    library.head.e_phnum = 1;

    EXPECT_EQ(library.wrongIn(headLength + 2 * segmentLength), "");
}

TEST(ElfCheck, OtherSegmentsAreNotLookedAt)
{
    Library library;
    library.addSegment(PT_NOTE, 0, 5000);

    EXPECT_EQ(library.wrongIn(headLength + segmentLength), "");
}

TEST(ElfCheck, WhatReachesBeyondEveryFileIsCutShort)
{
    if (sizeof(ElfW(Off)) < 8)
        GTEST_SKIP() << "its lengths are too short to run over";
    constexpr auto far = std::numeric_limits<ElfW(Off)>::max() - 7;
    Library sections;
    sections.head.e_shoff = far;
    sections.head.e_shnum = 1;
    Library segments;
    segments.addSegment(PT_LOAD, far, 8);
    const std::string expected = cutShort("4000 of 18446744073709551615 bytes; copy it anew");

    EXPECT_EQ(sections.wrongIn(4000), expected);
    EXPECT_EQ(segments.wrongIn(4000), expected);
}
