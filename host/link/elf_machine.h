// SPDX-License-Identifier: MIT
// The machine that a library is for, as the head of its file has it.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace dx4::host {

/// A kind of machine.
struct ElfMachine {
    int bits = 0; ///< 32 or 64; 0: neither
    bool isBigEndian = false;
    int number = 0; ///< of the processor, as <elf.h> lists them: EM_X86_64
};

/// The machine of this code itself.
ElfMachine ownMachine();

/// The machine that an ELF file is for; nothing where the bytes are no ELF file or too few to tell.
std::optional<ElfMachine> machineOf(const QByteArray &bytes);

/// Names both machines where the file is for another one than `own`; else empty.
QString wrongMachineOfElf(const QByteArray &bytes, const ElfMachine &own);

} // namespace dx4::host
