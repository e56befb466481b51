// SPDX-License-Identifier: MIT
// The machine that a library is for, as the head of its file has it.
#include "host/link/elf_machine.h"

#include <elf.h>
#include <link.h>

#include <cstddef>

// The linker sets it to the head of the file that this code becomes a part of.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" __attribute__((visibility("hidden"))) const ElfW(Ehdr) __ehdr_start;

namespace dx4::host {
namespace {

// The same place in files of both classes.
constexpr int machineOffset = offsetof(ElfW(Ehdr), e_machine);
static_assert(offsetof(Elf32_Ehdr, e_machine) == offsetof(Elf64_Ehdr, e_machine));

int bitsOf(unsigned char elfClass)
{
    if (elfClass == ELFCLASS32)
        return 32;
    return elfClass == ELFCLASS64 ? 64 : 0;
}

QString processorName(int number)
{
    switch (number) {
    case EM_386:
        return QStringLiteral("x86");
    case EM_X86_64:
        return QStringLiteral("x86-64");
    case EM_ARM:
        return QStringLiteral("ARM");
    case EM_AARCH64:
        return QStringLiteral("ARM64");
    case EM_PPC64:
        return QStringLiteral("PowerPC64");
    case EM_RISCV:
        return QStringLiteral("RISC-V");
    case EM_S390:
        return QStringLiteral("S/390");
    default:
        return QStringLiteral("processor %1").arg(number);
    }
}

QString nameOf(const ElfMachine &machine)
{
    return QStringLiteral("%1, %2 bits, %3-endian")
        .arg(processorName(machine.number))
        .arg(machine.bits)
        .arg(machine.isBigEndian ? QStringLiteral("big") : QStringLiteral("little"));
}

} // namespace

ElfMachine ownMachine()
{
    return { bitsOf(__ehdr_start.e_ident[EI_CLASS]), __ehdr_start.e_ident[EI_DATA] == ELFDATA2MSB,
             __ehdr_start.e_machine };
}

std::optional<ElfMachine> machineOf(const QByteArray &bytes)
{
    if (!bytes.startsWith(ELFMAG) || bytes.size() < machineOffset + 2)
        return std::nullopt;
    const auto byteAt = [&](int place) { return static_cast<unsigned char>(bytes.at(place)); };
    const bool isBigEndian = byteAt(EI_DATA) == ELFDATA2MSB;
    const int first = byteAt(machineOffset);
    const int second = byteAt(machineOffset + 1);
    return ElfMachine { bitsOf(byteAt(EI_CLASS)), isBigEndian,
                        isBigEndian ? first * 256 + second : first + second * 256 };
}

QString wrongMachineOfElf(const QByteArray &bytes, const ElfMachine &own)
{
    const auto machine = machineOf(bytes);
    const bool isOwn = machine && machine->bits == own.bits
        && machine->isBigEndian == own.isBigEndian && machine->number == own.number;
    if (!machine || isOwn)
        return {};
    return QStringLiteral("the file is for another machine (%1); expected one for %2")
        .arg(nameOf(*machine), nameOf(own));
}

} // namespace dx4::host
