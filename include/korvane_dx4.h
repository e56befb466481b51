// SPDX-License-Identifier: MIT
// The driver's one object. Hosts reach into it, so members and their order belong to the boundary.
#pragma once

#include "driver_export.h"
#include "host_records.h"

#include <QList>
#include <QMutex>
#include <QString>
#include <QVector>

/// The host's value-change function; called on the thread of the entry point that is still running.
///
/// It is told which register changed, not the value: that is read with intf_getData. It may call
/// intf_getData, intf_setData and intf_addConditionRead before it returns.
///
/// @param linkId   the link's number; 0 for "RWI", -1 for "-1"
/// @param station  Modbus station; -1 for "RWI" and "-1"
/// @param name     register type, or with "_bit" or "_double" behind it; "RWI" for a 16-bit unit of
///                 the recipe buffer; "-1" for the outcome of the last requested condition read. A
///                 string of the driver's that lives until the function returns; changes are
///                 ignored
/// @param address  internal address; address * 16 + bit with "_bit"; unit with "RWI"; 0 (served) or
///                 -1 (given up) with "-1"
using ValueChangeCallback = void (*)(int linkId, int station, QString &name, int address);

/// All state of the driver between two calls.
///
/// A host may read everything between two calls, and may clear, append to, replace or edit the
/// lists; the next call works on the lists as they then are. Not from inside the callback, and not
/// through a reference or pointer kept across a call. No two records of `dataAreas` share a key.
///
/// Lists are best read with `at()`, `constFirst()` or `std::as_const`: the driver keeps a copy that
/// shares with `dataAreas`, so that reading this as a non-const list copies the whole cache.
class korvane_dx4 {
public:
    korvane_dx4();
    ~korvane_dx4() = default;
    korvane_dx4(const korvane_dx4 &) = delete;
    korvane_dx4 &operator=(const korvane_dx4 &) = delete;

    ValueChangeCallback valueChangeCallback = nullptr; ///< null: nothing is called
    int linkId = 0; ///< property field 0: number of this link
    int writesLocalOnly = 0; ///< property field 1: nonzero keeps writes in the cache, none is sent
    int property2 = 0; ///< property field 2: stored only
    int retryLimit = 0; ///< property field 3: bad replies after which a request is given up
    int blockSize = 0; ///< property field 4: registers in one merged block
    unsigned char *hostBlock = nullptr; ///< host's shared bytes, guarded by hostMutex
    int hostParam = 0; ///< stored only
    unsigned short *recipeBuffer = nullptr; ///< host's recipe values, 16-bit units
    QMutex *hostMutex = nullptr; ///< host's lock around hostBlock
    QList<VARIABLE> readList; ///< cyclic reads, served in turn
    QList<VARIABLE> writeList; ///< waiting writes, at most 513; the head may be on the line
    QList<VARIABLE> conditionList; ///< waiting one-off reads; bound and head as in writeList
    QList<_DATA_> dataAreas; ///< the cache, one record per register, in order of first use
    QVector<_RCP_VAR_PRO> rcpVars; ///< this link's recipe variables
    QVector<_RCP_VAR_PRO> rcpSendVars; ///< recipe transfers; filled by the host only
    QList<int> mergeIndexList; ///< first recipe variable of each block; filled by merge mode 2 only
    QList<QString> regTypeList; ///< the type names in the order that weighs addresses
    VARIABLE conditionVar; ///< the condition read last queued
    VARIABLE curVar; ///< what is being served
    int phase = 0; ///< how curVar is being served: Phase
    int tryCount = 0; ///< writes and condition reads served since the last cyclic read
    int spare1 = 0; ///< 0
    int failCount = 0; ///< bad replies in a row to the current frame
    int bitBlockSize = 0; ///< registers per condition read with subAddress -1: 8 * blockSize
    int writeBlockSize = 0; ///< registers per write and per other condition read: blockSize
    int lastFailed = 0; ///< 1 while a request is closed that was given up
    int spare2 = 0; ///< 0
    int spare3 = 0; ///< 1 once initialised
    QList<FRAME_PRO> sendFrames; ///< frames of the request in progress, sent head first
    int rcpIndex = 0; ///< position in rcpSendVars
};

/// The one instance, alive from load to unload.
extern KORVANE_EXPORT korvane_dx4 driver;
