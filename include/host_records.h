// SPDX-License-Identifier: MIT
// The five records that cross the boundary between host and driver.
//
// They are plain values: copied whole, owned by whoever holds the copy. Every int is a signed
// 32-bit value. Register values lie low byte first in every `data` array, the reverse of the wire.
// Natural alignment and the order of the fields are part of the boundary; the assertions at the end
// hold them in place.
#pragma once

#include <QString>

#include <cstddef>

namespace dx4 {

/// Bytes of every value array that travels with a record, and of a frame.
inline constexpr int recordBytes = 1024;

} // namespace dx4

/// One run of registers of one station: a request, or the values of one.
struct VARIABLE {
    int varKind = 0; ///< host's tag; travels into each frame built for it. Cyclic reads carry 4
    int station = 0; ///< Modbus station; the low 8 bits go on the wire
    QString regType; ///< register type, one of REG_LIST
    int address = 0; ///< internal address of the first register: "F" (group << 8) + index
    int count = 0; ///< consecutive 16-bit registers
    unsigned char data[dx4::recordBytes] = {}; ///< values of a write, 2 bytes each, low byte first
};

/// One recipe variable as the host lists it.
struct _RCP_VAR_PRO {
    int linkId = 0; ///< link the record is meant for; others are skipped
    int station = 0; ///< copied to VARIABLE::station
    QString regType; ///< copied to VARIABLE::regType
    int address = 0; ///< copied to VARIABLE::address
    int count = 0; ///< registers, and 16-bit values taken from the recipe buffer
    int bufferOffset = 0; ///< first value in the recipe buffer, in 16-bit units, not negative
    int spare = 0; ///< carried along, never read
};

/// One request, ready to send, with what its reply must look like.
struct FRAME_PRO {
    unsigned char frame[dx4::recordBytes] = {}; ///< sendLength bytes of request; the rest is unused
    int sendLength = 0; ///< bytes of `frame` to send
    int replyLength = 0; ///< bytes of the reply that answers it: read 2 * count + 5, write 8
    int replyDataOffset = 0; ///< first register byte in the reply: read 3, write 0
    int replyDataLength = 0; ///< register bytes in the reply: read 2 * count, write 0
    int spare = 0; ///< never read
    VARIABLE var; ///< the variable that the frame serves
};

/// One cached 16-bit register. Its key is (station, regType, address).
struct _DATA_ {
    unsigned char flag0 = 0; ///< 1 after a read of it was given up, 0 after a reply
    unsigned char writePending = 0; ///< nonzero while writeValue is shown in place of value
    int word1 = 0; ///< 0; a polled value ends a pending write only while it is 0
    int flags = 0; ///< bit 0 monitored; bits 1, 2 first, second half of a monitored double
    int bitMask = 0; ///< bit i set: bit i is monitored on its own
    int station = 0; ///< key: Modbus station
    QString regType; ///< key: register type
    int address = 0; ///< key: internal address
    unsigned char value[4] = {}; ///< last device value: [0] low byte, [1] high byte, rest 0
    unsigned char writeValue[4] = {}; ///< last written value, same order
};

/// One address that the host's screens need; the unit of merging.
struct KEY_ADDRESS {
    QString hostTag; ///< the host's own, carried along
    int hostWord1 = 0; ///< the host's own, carried along
    int hostWord2 = 0; ///< the host's own, carried along
    int station = 0; ///< Modbus station
    QString regType; ///< register type
    QString hostText; ///< the host's own, carried along
    int address = 0; ///< internal address of the first register
    int subAddress = 0; ///< -1: whole registers, split by bitBlockSize; else by writeBlockSize
    int count = 0; ///< registers in the run
    unsigned char data[dx4::recordBytes] = {}; ///< as VARIABLE::data
};

// Host and driver are built apart, so an inserted field or another packing would corrupt memory
// without a word. The sizes in bytes of VARIABLE, _RCP_VAR_PRO, FRAME_PRO, _DATA_ and KEY_ADDRESS:
// with Qt 5 on a 64-bit machine 1048, 32, 2096, 48 and 1080, on a 32-bit machine 1044, 28, 2088, 36
// and 1060; with Qt 6 on a 64-bit machine 1064, 48, 2112, 64 and 1128.
namespace dx4 {

/// The first place from `offset` on, in bytes, that a QString may have.
constexpr std::size_t stringPlace(std::size_t offset)
{
    return (offset + alignof(QString) - 1) / alignof(QString) * alignof(QString);
}

} // namespace dx4

static_assert(sizeof(int) == 4, "every int of the boundary has 32 bits");

static_assert(offsetof(VARIABLE, varKind) == 0);
static_assert(offsetof(VARIABLE, station) == 4);
static_assert(offsetof(VARIABLE, regType) == 8);
static_assert(offsetof(VARIABLE, address) == 8 + sizeof(QString));
static_assert(offsetof(VARIABLE, count) == 12 + sizeof(QString));
static_assert(offsetof(VARIABLE, data) == 16 + sizeof(QString));
static_assert(sizeof(VARIABLE) == 16 + sizeof(QString) + dx4::recordBytes);

static_assert(offsetof(_RCP_VAR_PRO, linkId) == 0);
static_assert(offsetof(_RCP_VAR_PRO, station) == 4);
static_assert(offsetof(_RCP_VAR_PRO, regType) == 8);
static_assert(offsetof(_RCP_VAR_PRO, address) == 8 + sizeof(QString));
static_assert(offsetof(_RCP_VAR_PRO, count) == 12 + sizeof(QString));
static_assert(offsetof(_RCP_VAR_PRO, bufferOffset) == 16 + sizeof(QString));
static_assert(offsetof(_RCP_VAR_PRO, spare) == 20 + sizeof(QString));
static_assert(sizeof(_RCP_VAR_PRO) == 24 + sizeof(QString));

static_assert(offsetof(FRAME_PRO, frame) == 0);
static_assert(offsetof(FRAME_PRO, sendLength) == dx4::recordBytes);
static_assert(offsetof(FRAME_PRO, replyLength) == dx4::recordBytes + 4);
static_assert(offsetof(FRAME_PRO, replyDataOffset) == dx4::recordBytes + 8);
static_assert(offsetof(FRAME_PRO, replyDataLength) == dx4::recordBytes + 12);
static_assert(offsetof(FRAME_PRO, spare) == dx4::recordBytes + 16);
static_assert(offsetof(FRAME_PRO, var) == dx4::stringPlace(dx4::recordBytes + 20));
static_assert(sizeof(FRAME_PRO) == offsetof(FRAME_PRO, var) + sizeof(VARIABLE));

static_assert(offsetof(_DATA_, flag0) == 0);
static_assert(offsetof(_DATA_, writePending) == 1);
static_assert(offsetof(_DATA_, word1) == 4);
static_assert(offsetof(_DATA_, flags) == 8);
static_assert(offsetof(_DATA_, bitMask) == 12);
static_assert(offsetof(_DATA_, station) == 16);
static_assert(offsetof(_DATA_, regType) == dx4::stringPlace(20));
static_assert(offsetof(_DATA_, address) == dx4::stringPlace(20) + sizeof(QString));
static_assert(offsetof(_DATA_, value) == dx4::stringPlace(20) + sizeof(QString) + 4);
static_assert(offsetof(_DATA_, writeValue) == dx4::stringPlace(20) + sizeof(QString) + 8);
static_assert(sizeof(_DATA_) == dx4::stringPlace(dx4::stringPlace(20) + sizeof(QString) + 12));

static_assert(offsetof(KEY_ADDRESS, hostTag) == 0);
static_assert(offsetof(KEY_ADDRESS, hostWord1) == sizeof(QString));
static_assert(offsetof(KEY_ADDRESS, hostWord2) == sizeof(QString) + 4);
static_assert(offsetof(KEY_ADDRESS, station) == sizeof(QString) + 8);
static_assert(offsetof(KEY_ADDRESS, regType) == dx4::stringPlace(sizeof(QString) + 12));
static_assert(offsetof(KEY_ADDRESS, hostText) == offsetof(KEY_ADDRESS, regType) + sizeof(QString));
static_assert(offsetof(KEY_ADDRESS, address) == offsetof(KEY_ADDRESS, hostText) + sizeof(QString));
static_assert(offsetof(KEY_ADDRESS, subAddress) == offsetof(KEY_ADDRESS, address) + 4);
static_assert(offsetof(KEY_ADDRESS, count) == offsetof(KEY_ADDRESS, address) + 8);
static_assert(offsetof(KEY_ADDRESS, data) == offsetof(KEY_ADDRESS, address) + 12);
static_assert(sizeof(KEY_ADDRESS)
              == dx4::stringPlace(offsetof(KEY_ADDRESS, data) + dx4::recordBytes));

static_assert(sizeof(QString) != 4
              || (sizeof(VARIABLE) == 1044 && sizeof(_RCP_VAR_PRO) == 28
                  && sizeof(FRAME_PRO) == 2088 && sizeof(_DATA_) == 36
                  && sizeof(KEY_ADDRESS) == 1060));
static_assert(sizeof(QString) != 8
              || (sizeof(VARIABLE) == 1048 && sizeof(_RCP_VAR_PRO) == 32
                  && sizeof(FRAME_PRO) == 2096 && sizeof(_DATA_) == 48
                  && sizeof(KEY_ADDRESS) == 1080));
static_assert(sizeof(QString) != 24
              || (sizeof(VARIABLE) == 1064 && sizeof(_RCP_VAR_PRO) == 48
                  && sizeof(FRAME_PRO) == 2112 && sizeof(_DATA_) == 64
                  && sizeof(KEY_ADDRESS) == 1128));
