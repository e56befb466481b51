// SPDX-License-Identifier: MIT
// Joins the addresses that the host's screens need into as few block reads as possible.
#pragma once

#include "host_records.h"

#include <QList>
#include <QString>

/// Merges in place: sorts by weight and joins twice (mode 1), or joins once in the order given and
/// notes in driver.mergeIndexList which input starts each block (mode 2). An empty list stays
/// empty.
void addrMerge(QList<KEY_ADDRESS> &list, int mode);

/// Whether `b` may join the block `a`.
///
/// Deliberate: stations are not compared. Addresses of one type whose ranges touch become one
/// block, read from the station of its first address.
///
/// @return 0 it may, 1 it must start a block: another type, a gap, or another "F" group
int the_Merge(KEY_ADDRESS &a, KEY_ADDRESS &b);

/// Sorting key: a band per station and type, and the address within it.
///
/// @param regType  counts by its position in driver.regTypeList, from 1; 0 for a name not in it
/// @param unused   any value
unsigned getRegAddressWeight(int station, QString regType, int address, int unused);
