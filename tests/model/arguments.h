// SPDX-License-Identifier: MIT
// Plausible and odd arguments for the driver's entry points.
#pragma once

#include "byte_source.h"
#include "host_records.h"

#include <QByteArray>
#include <QList>
#include <QVector>

namespace model {

/// Few stations, so that requests meet.
int drawStation(ByteSource &source);

/// Mostly the six types, at times a name that is none or looks like a placeholder of QString::arg.
QString drawType(ByteSource &source);

/// Mostly low numbers; group ends, negative ones and the ends of 32 bits at times.
int drawAddress(ByteSource &source);

/// Mostly 1 to 4 registers, at times -600 to 600.
int drawCount(ByteSource &source);

/// Limits of request length, 0 and negative ones included.
int drawBlockSize(ByteSource &source);

/// An address text as typed, well-formed or not.
QString drawAddressText(ByteSource &source);

/// Property text of a link, well-formed or not.
QByteArray drawPropertyText(ByteSource &source);

/// `registers` values, two bytes each; few different ones, so that values repeat.
QByteArray drawValues(ByteSource &source, int registers);

VARIABLE drawVariable(ByteSource &source);
_DATA_ drawArea(ByteSource &source);
KEY_ADDRESS drawKeyAddress(ByteSource &source);
QVector<_RCP_VAR_PRO> drawRecipe(ByteSource &source);

/// Words of the host's recipe buffer; every recipe that is drawn stays inside.
inline constexpr int recipeWords = 2048;

} // namespace model
