// SPDX-License-Identifier: MIT
// What a library needs, read out of whole, cut and altered files.
#include "host/link/elf_needs.h"

#include <gtest/gtest.h>

#include <QFile>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <elf.h>
#include <link.h>

using dx4::host::neededLibraries;
using dx4::host::wrongQtOfElf;

namespace {

using Head = ElfW(Ehdr);
using Segment = ElfW(Phdr);
using Entry = ElfW(Dyn);

constexpr unsigned tableDistance = 0x4000; // of addresses and places in the file

template <typename Record> QByteArray bytesOf(const Record &record)
{
    return { reinterpret_cast<const char *>(&record), static_cast<int>(sizeof record) };
}

/// A library that needs others: a head, two segments, the dynamic section and its names at the end.
struct Library {
    explicit Library(const std::vector<QByteArray> &names)
    {
        strings = QByteArray(1, '\0');
        for (const QByteArray &name : names) {
            add(DT_NEEDED, static_cast<std::size_t>(strings.size()));
            strings += name + '\0';
        }
        add(DT_STRTAB, 0);
        add(DT_STRSZ, static_cast<std::size_t>(strings.size()));
        add(DT_NULL, 0);
        place();
    }

    void add(std::size_t tag, std::size_t value)
    {
        Entry entry = {};
        entry.d_tag = static_cast<decltype(entry.d_tag)>(tag);
        entry.d_un.d_val = value;
        entries.push_back(entry);
    }

    /// Gives everything its place, one behind the other.
    void place()
    {
        std::memcpy(head.e_ident, ELFMAG, SELFMAG);
        head.e_phoff = sizeof head;
        head.e_phentsize = sizeof(Segment);
        head.e_phnum = 2;
        dynamic.p_type = PT_DYNAMIC;
        dynamic.p_offset = sizeof head + 2 * sizeof(Segment);
        dynamic.p_filesz = entries.size() * sizeof(Entry);
        const auto tableOffset = dynamic.p_offset + dynamic.p_filesz;
        loaded.p_type = PT_LOAD;
        loaded.p_vaddr = tableDistance;
        loaded.p_filesz = tableOffset + static_cast<std::size_t>(strings.size());
        entry(DT_STRTAB) = tableDistance + tableOffset;
    }

    decltype(Entry().d_un.d_val) &entry(std::size_t tag)
    {
        for (Entry &candidate : entries) {
            if (candidate.d_tag == static_cast<decltype(candidate.d_tag)>(tag))
                return candidate.d_un.d_val;
        }
        ADD_FAILURE() << "no entry " << tag;
        return entries.front().d_un.d_val;
    }

    QByteArray bytes() const
    {
        QByteArray all = bytesOf(head) + bytesOf(loaded) + bytesOf(dynamic);
        for (const Entry &one : entries)
            all += bytesOf(one);
        return all + strings;
    }

    Head head = {};
    Segment loaded = {};
    Segment dynamic = {};
    std::vector<Entry> entries;
    QByteArray strings;
};

/// The names with blanks between them, or "unreadable".
std::string neededBy(const QByteArray &bytes)
{
    const auto names = neededLibraries(bytes);
    return names ? names->join(' ').toStdString() : "unreadable";
}

std::string neededBy(const Library &library)
{
    return neededBy(library.bytes());
}

std::string wrongQt(const char *needed, int ownMajor)
{
    return wrongQtOfElf(Library({ "libm.so.6", needed, "libc.so.6" }).bytes(), ownMajor)
        .toStdString();
}

const std::vector<QByteArray> twoNames = { "libQt5Core.so.5", "libc.so.6" };

} // namespace

TEST(ElfNeeds, NamesStandInTheOrderOfTheFile)
{
    EXPECT_EQ(neededBy(Library(twoNames)), "libQt5Core.so.5 libc.so.6");
}

TEST(ElfNeeds, WithoutNamesOrWithoutADynamicSectionNothingIsNeeded)
{
    Library noNames({});
    noNames.entry(DT_STRTAB) = 0;
    Library noSection(twoNames);
    noSection.dynamic.p_type = PT_NOTE;
    Library noSegments(twoNames);
    noSegments.head.e_phnum = 0;
    noSegments.head.e_phentsize = 0;

    EXPECT_EQ(neededBy(noNames), "");
    EXPECT_EQ(neededBy(noSection), "");
    EXPECT_EQ(neededBy(noSegments), "");
}

TEST(ElfNeeds, AHeadAloneNeedsNothing)
{
    Library library(twoNames);
    library.head.e_phnum = 0;

    EXPECT_EQ(neededBy(bytesOf(library.head)), "");
    EXPECT_EQ(neededBy(bytesOf(library.head).chopped(1)), "unreadable");
}

TEST(ElfNeeds, ANameMayBeEmptyAtEitherEndOfTheTable)
{
    Library first(twoNames);
    first.entry(DT_NEEDED) = 0;
    Library last(twoNames);
    last.entry(DT_NEEDED) = static_cast<std::size_t>(last.strings.size()) - 1;

    EXPECT_EQ(neededBy(first), ' ' + twoNames.back().toStdString());
    EXPECT_EQ(neededBy(last), ' ' + twoNames.back().toStdString());
}

TEST(ElfNeeds, TheTableMayBeAllOfItsSegment)
{
    Library library(twoNames);
    library.loaded.p_offset = library.dynamic.p_offset + library.dynamic.p_filesz;
    library.loaded.p_vaddr = library.entry(DT_STRTAB);
    library.loaded.p_filesz = static_cast<std::size_t>(library.strings.size());

    EXPECT_EQ(neededBy(library), (twoNames.front() + ' ' + twoNames.back()).toStdString());
}

TEST(ElfNeeds, WhatFollowsTheEndOfTheSectionIsNoName)
{
    Library library(twoNames);
    library.add(DT_NEEDED, 1);
    library.place();

    EXPECT_EQ(neededBy(library), "libQt5Core.so.5 libc.so.6");
}

TEST(ElfNeeds, ASectionMayEndWithItsSegment)
{
    Library library(twoNames);
    library.entries.pop_back();
    library.place();

    EXPECT_EQ(neededBy(library), "libQt5Core.so.5 libc.so.6");
}

TEST(ElfNeeds, ASectionMayEndTheFile)
{
    Library library({});
    library.entries.pop_back();
    library.strings.clear();
    library.place();

    EXPECT_EQ(neededBy(library), "");
}

TEST(ElfNeeds, NoCutFileIsRead)
{
    const QByteArray whole = Library(twoNames).bytes();

    for (int size = 0; size < whole.size(); ++size)
        EXPECT_EQ(neededBy(QByteArray(whole.constData(), size)), "unreadable") << size << " bytes";
}

TEST(ElfNeeds, AnAlteredByteLeadsToNoMoreThanTheFileHas)
{
    const QByteArray whole = Library(twoNames).bytes();

    for (int place = 0; place < whole.size(); ++place) {
        for (const char value : { '\0', '\1', '\x7f', '\x80', '\xff' }) {
            QByteArray altered = whole;
            altered[place] = value;
            const auto names = neededLibraries(altered);
            EXPECT_TRUE(!names || names->size() <= 4) << "byte " << place;
        }
    }
}

TEST(ElfNeeds, ANameBeginsAndEndsWithinTheTable)
{
    Library behind(twoNames);
    behind.entry(DT_NEEDED) = static_cast<std::size_t>(behind.strings.size());
    Library far(twoNames);
    far.entry(DT_NEEDED) = std::numeric_limits<decltype(Entry().d_un.d_val)>::max();
    Library endless(twoNames);
    endless.entry(DT_STRSZ) -= 1;

    EXPECT_EQ(neededBy(behind), "unreadable");
    EXPECT_EQ(neededBy(far), "unreadable");
    EXPECT_EQ(neededBy(endless), "unreadable");
}

TEST(ElfNeeds, TheTableIsLoadedFromTheFileAsAWhole)
{
    Library longer(twoNames);
    longer.entry(DT_STRSZ) += 1;
    Library before(twoNames);
    before.entry(DT_STRTAB) = tableDistance - 1;
    Library far(twoNames);
    far.entry(DT_STRTAB) = std::numeric_limits<decltype(Entry().d_un.d_val)>::max();
    Library missing(twoNames);
    missing.loaded.p_type = PT_NOTE;

    EXPECT_EQ(neededBy(longer), "unreadable");
    EXPECT_EQ(neededBy(before), "unreadable");
    EXPECT_EQ(neededBy(far), "unreadable");
    EXPECT_EQ(neededBy(missing), "unreadable");
}

TEST(ElfNeeds, SegmentsLieWithinTheFile)
{
    constexpr auto farthest = std::numeric_limits<decltype(Segment().p_offset)>::max();
    Library section(twoNames);
    section.dynamic.p_offset = farthest;
    Library loaded(twoNames);
    loaded.loaded.p_offset = farthest;
    Library table(twoNames);
    table.head.e_phoff = farthest;
    Library records(twoNames);
    records.head.e_phentsize = sizeof(Segment) + 8;

    EXPECT_EQ(neededBy(section), "unreadable");
    EXPECT_EQ(neededBy(loaded), "unreadable");
    EXPECT_EQ(neededBy(table), "unreadable");
    EXPECT_EQ(neededBy(records), "unreadable");
}

TEST(ElfNeeds, NamesAreAsManyAndAsLongAsAnySystemHas)
{
    const auto named = [](int names, int length) {
        return Library(std::vector<QByteArray>(static_cast<std::size_t>(names),
                                               QByteArray(length, 'x')))
            .bytes();
    };

    ASSERT_TRUE(neededLibraries(named(1000, 1)));
    EXPECT_EQ(neededLibraries(named(1000, 1))->size(), 1000);
    EXPECT_FALSE(neededLibraries(named(1001, 1)));
    ASSERT_TRUE(neededLibraries(named(1, 4096)));
    EXPECT_EQ(neededLibraries(named(1, 4096))->constFirst().size(), 4096);
    EXPECT_FALSE(neededLibraries(named(1, 4097)));
}

TEST(ElfNeeds, TheOtherQtIsRefusedWithTheFolderOfTheRightFile)
{
    EXPECT_EQ(wrongQt("libQt6Core.so.6", 5),
              "the file is built for Qt 6, this program for Qt 5; expected the file of the folder "
              "korvane_dx4/qt5");
    EXPECT_EQ(wrongQt("libQt5Core.so.5", 6),
              "the file is built for Qt 5, this program for Qt 6; expected the file of the folder "
              "korvane_dx4/qt6");
}

TEST(ElfNeeds, TheSameQtAndOtherLibrariesAreNotRefused)
{
    EXPECT_EQ(wrongQt("libQt5Core.so.5", 5), "");
    EXPECT_EQ(wrongQt("libQt6Core.so.6", 6), "");
    EXPECT_EQ(wrongQt("libQt6CoreTools.so.6", 5), "");
    EXPECT_EQ(wrongQt("libCore.so.6", 5), "");
    EXPECT_EQ(wrongQt("libQt", 5), "");
    EXPECT_EQ(wrongQt("", 5), "");
}

TEST(ElfNeeds, WhatCannotBeReadIsDamaged)
{
    Library library(twoNames);
    library.entry(DT_STRSZ) += 1;

    EXPECT_EQ(wrongQtOfElf(library.bytes(), 5).toStdString(),
              "the file is damaged: what it needs cannot be read; copy it anew");
}

TEST(ElfNeeds, TheDriverNeedsTheCoreOfItsQt)
{
    QFile driver(QStringLiteral(KORVANE_PLUGIN_FILE));
    ASSERT_TRUE(driver.open(QIODevice::ReadOnly));

    const auto names = neededLibraries(driver.readAll());

    ASSERT_TRUE(names);
    const QByteArray core = QT_VERSION_MAJOR == 5 ? "libQt5Core.so.5" : "libQt6Core.so.6";
    EXPECT_TRUE(names->contains(core)) << names->join(' ').constData();
}
