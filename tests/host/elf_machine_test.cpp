// SPDX-License-Identifier: MIT
// The machine that a library's file is for.
#include "host/link/elf_machine.h"

#include <gtest/gtest.h>

#include <QFile>

#include <string>

#include <elf.h>

using dx4::host::ElfMachine;
using dx4::host::machineOf;
using dx4::host::ownMachine;
using dx4::host::wrongMachineOfElf;

namespace {

const ElfMachine pc { 64, false, EM_X86_64 };

/// The head of a file up to its machine, which is all that is looked at.
QByteArray headOf(char elfClass, char byteOrder, const char (&machine)[3])
{
    QByteArray head = ELFMAG;
    head.append(elfClass).append(byteOrder).append(12, '\0');
    return head.append(machine, 2);
}

std::string wrongFor(const ElfMachine &own, const QByteArray &head)
{
    return wrongMachineOfElf(head, own).toStdString();
}

} // namespace

TEST(ElfMachine, AFileForThisMachineIsRight)
{
    EXPECT_EQ(wrongFor(pc, headOf(ELFCLASS64, ELFDATA2LSB, "\x3e\0")), "");
    EXPECT_EQ(wrongFor({ 64, true, EM_S390 }, headOf(ELFCLASS64, ELFDATA2MSB, "\0\x16")), "");
    EXPECT_EQ(wrongFor({ 32, false, EM_ARM }, headOf(ELFCLASS32, ELFDATA2LSB, "\x28\0")), "");
}

TEST(ElfMachine, BothMachinesAreNamed)
{
    EXPECT_EQ(wrongFor(pc, headOf(ELFCLASS64, ELFDATA2LSB, "\xb7\0")),
              "the file is for another machine (ARM64, 64 bits, little-endian); expected one for "
              "x86-64, 64 bits, little-endian");
    EXPECT_EQ(wrongFor({ 32, false, EM_ARM }, headOf(ELFCLASS32, ELFDATA2LSB, "\x03\0")),
              "the file is for another machine (x86, 32 bits, little-endian); expected one for "
              "ARM, 32 bits, little-endian");
    EXPECT_EQ(wrongFor({ 64, true, EM_S390 }, headOf(ELFCLASS64, ELFDATA2LSB, "\xf3\0")),
              "the file is for another machine (RISC-V, 64 bits, little-endian); expected one for "
              "S/390, 64 bits, big-endian");
    EXPECT_EQ(wrongFor({ 64, true, EM_PPC64 }, headOf(ELFCLASS64, ELFDATA2MSB, "\x01\x02")),
              "the file is for another machine (processor 258, 64 bits, big-endian); expected one "
              "for PowerPC64, 64 bits, big-endian");
    EXPECT_EQ(wrongFor(pc, headOf(ELFCLASS64, ELFDATA2LSB, "\x02\x01")),
              "the file is for another machine (processor 258, 64 bits, little-endian); expected "
              "one for x86-64, 64 bits, little-endian");
}

TEST(ElfMachine, OtherBitsOrAnotherByteOrderAreAnotherMachine)
{
    EXPECT_EQ(wrongFor(pc, headOf(ELFCLASS32, ELFDATA2LSB, "\x3e\0")),
              "the file is for another machine (x86-64, 32 bits, little-endian); expected one for "
              "x86-64, 64 bits, little-endian");
    EXPECT_EQ(wrongFor(pc, headOf(ELFCLASS64, ELFDATA2MSB, "\0\x3e")),
              "the file is for another machine (x86-64, 64 bits, big-endian); expected one for "
              "x86-64, 64 bits, little-endian");
    EXPECT_EQ(wrongFor(pc, headOf('\x07', ELFDATA2LSB, "\x3e\0")),
              "the file is for another machine (x86-64, 0 bits, little-endian); expected one for "
              "x86-64, 64 bits, little-endian");
}

TEST(ElfMachine, WhatIsTooShortOrNoLibraryIsForNone)
{
    const QByteArray head = headOf(ELFCLASS64, ELFDATA2LSB, "\xb7\0");

    EXPECT_FALSE(machineOf(QByteArray()));
    EXPECT_FALSE(machineOf(head.left(19)));
    EXPECT_TRUE(machineOf(head.left(20)));
    EXPECT_FALSE(machineOf(QByteArray("no library at all, but long enough")));
    EXPECT_EQ(wrongFor(pc, head.left(19)), "");
}

TEST(ElfMachine, TheDriverIsForThisMachine)
{
    QFile driver(QStringLiteral(KORVANE_PLUGIN_FILE));
    ASSERT_TRUE(driver.open(QIODevice::ReadOnly));

    const auto machine = machineOf(driver.readAll());

    ASSERT_TRUE(machine);
    EXPECT_EQ(machine->bits, ownMachine().bits);
    EXPECT_EQ(machine->isBigEndian, ownMachine().isBigEndian);
    EXPECT_EQ(machine->number, ownMachine().number);
    EXPECT_EQ(ownMachine().bits, int { sizeof(void *) } * 8);
    EXPECT_EQ(ownMachine().isBigEndian, Q_BYTE_ORDER == Q_BIG_ENDIAN);
}
