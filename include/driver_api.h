// SPDX-License-Identifier: MIT
// The entry points of libkorvane_dx4.so: everything a host calls.
//
// Rules that hold for all of them:
// - Calls must not overlap. The driver has no thread and no lock of its own; only the host's mutex
//   is locked, and only around the two recipe request bytes of the host's block.
// - Buffers, strings and lists passed in stay the host's; the driver copies what it keeps. The
//   shared block, the recipe buffer and the mutex must outlive the link. A string handed out stays
//   valid after the library is unloaded.
// - Lists and vectors handed in for output are appended to, never cleared. Only intf_addrMerge
//   replaces the list that it is given.
// - Register values are two bytes per register, low byte first.
// - Nothing throws and nothing is logged. Failures are small integers, named in result_codes.h.
// - A null output pointer is not written. A null input text counts as empty.
//
// Contexts: [any time]; [editor] touches no state; [setup] never while a request is in flight;
// [cycle] the thread that drives the line; [cycle, calls back] runs the host's callback before it
// returns. Three entry points may be called from inside the callback and say so.
#pragma once

#include "driver_export.h"
#include "host_records.h"
#include "korvane_dx4.h"
#include "result_codes.h"

#include <QByteArray>
#include <QList>
#include <QMutex>
#include <QString>
#include <QVector>

extern "C" {

// Identity and settings ----------------------------------------------------------------------

/// Names the kind of protocol.
///
/// [any time]
/// @param type  out: 0, a serial protocol
KORVANE_EXPORT void intf_getProtocolType(int *type);

/// Gives the default settings of a link and the register types, sixteen fields between commas.
///
/// [any time]
/// @param text  out: port, speed in bit/s, data bits, parity, stop bits, two flags, IP address,
///              TCP port, driver name, then the six types; replaces what it held
KORVANE_EXPORT void intf_getDriverParameter(QString &text);

/// Gives the property page.
///
/// [any time]
/// @param text  out: "0_0"
KORVANE_EXPORT void intf_getDriverPropertyPage(QString &text);

/// Empties the text it is given.
///
/// [any time] Deliberate: despite its name it takes nothing from the host.
/// @param text  out: empty
KORVANE_EXPORT void intf_SetDriverPropertyPage(QString &text);

/// Stores the function that hears of changed values.
///
/// [setup] May precede intf_initProperty, which keeps it. A later call replaces it.
/// @param callback  the function; null ends notification
KORVANE_EXPORT void intf_setAddrValueChangeCallBack(ValueChangeCallback callback);

/// Takes the settings of the link and starts it afresh.
///
/// [setup] Empties the read, write and condition lists, the cache and the frames in progress, and
/// zeroes the counters. Recipe variables are kept.
///
/// @param hostBlock     shared bytes, at least hostBlockBytes (60117) of them; recipe transfers are
///                      requested at recipeWriteFlag and recipeReadFlag. Null: no request is seen
/// @param hostParam     stored, not used
/// @param recipeBuffer  recipe values, 16-bit units; null: none is read, none is stored
/// @param result        out: 0
/// @param propertyText  Latin-1, fields between "#": link number, writes stay local (0: no), a
///                      stored field, retry limit in bad replies, block size in registers. Decimal;
///                      what is no number counts as 0. With fewer than five fields the settings
///                      stay as they were
/// @param hostMutex     lock around hostBlock; null: no recipe request is seen
/// @return 1
KORVANE_EXPORT int intf_initProperty(unsigned char *hostBlock, int hostParam,
                                     unsigned short *recipeBuffer, int *result,
                                     const char *propertyText, QMutex *hostMutex);

// Register catalogue -------------------------------------------------------------------------

/// Lists the register types.
///
/// [editor]
/// @param type  1; any other value gets no answer
/// @param list  appended: "F", "D", "CW", "SW", "FRE", "FU", which is not the order of REG_LIST
/// @return 1 appended, 0 not
KORVANE_EXPORT int intf_getRegListByType(int type, QList<QString> *list);

/// Describes a register type.
///
/// [editor]
/// @param regType  type name, case-sensitive
/// @param list     appended: the five texts of the type's row of REG_DESCRIPTION
/// @return 1 appended, 0 unknown type
KORVANE_EXPORT int intf_getRegDiscription(QString regType, QList<QString> *list);

/// Checks an address without regard to access rights or length of the text.
///
/// [editor]
/// @param regType   type name, case-sensitive
/// @param addrText  "h.dd" for F, else a decimal number; any "-" or "+" is malformed
/// @param address   out: internal address; written whenever the text is converted, failing or not
/// @param count     registers from the address on
/// @param typeFlag  0 refuses every known type with 1
/// @return 0 acceptable, 1 refused before parsing, 2 out of range, 3 unknown type, 4 malformed
KORVANE_EXPORT int intf_checkAddrValidity(QString regType, QString addrText, int *address,
                                          int count, int typeFlag);

/// Checks an address typed in the editor for one kind of access and gives its internal form.
///
/// [editor]
/// @param regType     type name, case-sensitive
/// @param addrText    at most 4 characters for F ("h.dd"), 2 for D ("dd"), 1 for the others
/// @param address     out: internal address; written whenever the text is converted, failing or not
/// @param subIndex    -1 refuses every known type with 1
/// @param count       registers from the address on
/// @param accessMode  AccessMode: 0 read, 1 write, 2 both
/// @return 0 acceptable, 1 refused before parsing, 2 out of range, 3 unknown type or group a or b,
///         4 malformed, 6 read-only type, 7 write-only type, 16 text too long
KORVANE_EXPORT int intf_checkAddr(QString regType, QString addrText, int *address, int subIndex,
                                  int count, int accessMode);

/// Gives the addresses of stepped copies, clamped to the type's range.
///
/// [editor] F steps from the end of one parameter group to index 0 of the next. Memory grows with
/// `count`.
///
/// @param regType       type name, case-sensitive
/// @param startAddress  internal address of the first copy
/// @param count         copies; none for 0 and below
/// @param step          registers between two copies; -2 counts as 2, any other below 1 as 1
/// @param texts         appended: `count` address texts; may be null
/// @param addresses     appended: `count` internal addresses; may be null
/// @return 0 unknown type (nothing appended), 1 all in range, 2 at least one clamped
KORVANE_EXPORT int intf_multiCopy(QString regType, int startAddress, int count, int step,
                                  QVector<QString> *texts, QVector<int> *addresses);

// Configuration of a link --------------------------------------------------------------------

/// Replaces the recipe variables by those of the list that belong to this link.
///
/// [setup]
/// @param rcpList  recipe variables of all links, in the host's order
/// @return number of variables kept
KORVANE_EXPORT int intf_setRcpAddress(const QVector<_RCP_VAR_PRO> &rcpList);

/// Replaces the cyclic reads by blocks merged from the addresses that the host's screens need.
///
/// [setup] Marks exactly the registers of `addresses` as monitored and creates their cache records.
/// Deliberate: stations are not compared when blocks are joined, and an address inside a longer
/// block shortens that block; see docs/behaviour.md.
///
/// @param addresses  in: wanted addresses; out: the merged blocks in the order they are read
/// @return number of cyclic reads, 0 for an empty list
KORVANE_EXPORT int intf_addrMerge(QList<KEY_ADDRESS> &addresses);

// The cycle ----------------------------------------------------------------------------------

/// Gives the next frame to send.
///
/// [cycle] While a request is in progress its frame is handed out again. Otherwise the next one is
/// chosen: recipe write, recipe read, waiting write, condition read, cyclic read. Locks the host's
/// mutex to read the two recipe request bytes.
///
/// @param out  out: the frame, its expected reply and its variable; untouched when there is none
/// @return 1 a frame was copied, 0 nothing to send
KORVANE_EXPORT int intf_getSendFrame(FRAME_PRO &out);

/// Queues a one-off read, cut into pieces of at most the block size.
///
/// [cycle] May be called from inside the callback. The outcome of the piece queued last is reported
/// under the name "-1". The queue holds 513 entries; a request beyond replaces the last entry.
///
/// @param address  station, type, address and count to read; subAddress -1 allows 8 times the block
/// @param varKind  tag for VARIABLE::varKind
/// @return 1
KORVANE_EXPORT int intf_addConditionRead(KEY_ADDRESS address, int varKind);

/// Takes the bytes that answered the frame handed out last.
///
/// [cycle, calls back] Call it once per frame sent, with an empty array when nothing came. Length
/// and CRC are checked; station, function code and byte count are not. Stores read values, settles
/// writes, counts failures and closes the request.
///
/// @param reply      the bytes received, none added and none missing
/// @param errorText  out: "station#type address(count)(bytes received)" without blanks; empty when
///                   no request was pending
/// @return 0 no request pending, 1 accepted, 2 given up, 8 bad: send the same frame again
KORVANE_EXPORT int intf_dealRcvFrame(QByteArray &reply, QString &errorText);

// Values -------------------------------------------------------------------------------------

/// Copies cached values; a written value is shown until its write is settled.
///
/// [cycle] May be called from inside the callback. Never waits for the device. A register that was
/// never seen gets a record and reads as 0.
///
/// @param station  Modbus station
/// @param regType  type name; nothing is copied for an unknown one
/// @param address  internal address of the first register
/// @param count    registers; nothing is copied below 1
/// @param out      out: 2 * count bytes
/// @return 1
KORVANE_EXPORT int intf_getData(int station, QString regType, int address, int count,
                                unsigned char *out);

/// Shows a value at once and queues its write, cut into requests of at most the block size.
///
/// [cycle, calls back] May be called from inside the callback. A write of the same registers that
/// still waits is replaced; the head of the queue, which may be on the line, never is. The queue
/// holds 513 entries; a request beyond replaces the last entry.
///
/// @param station  Modbus station
/// @param regType  type name; nothing is done for an unknown one
/// @param address  internal address of the first register
/// @param count    registers
/// @param data     2 * count bytes, none of them inside a list of `driver`; null with a count of 1
///                 or more does nothing
/// @param varKind  tag for VARIABLE::varKind
/// @return 1
KORVANE_EXPORT int intf_setData(int station, QString regType, int address, int count,
                                unsigned char *data, int varKind);

} // extern "C"
