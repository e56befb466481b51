// SPDX-License-Identifier: MIT
// Recipe variables: registers whose values travel to and from a buffer of the host.
#pragma once

#include "host_records.h"

#include <QByteArray>

namespace dx4 {

/// Stores the registers of an accepted recipe read into the host's buffer and reports each unit.
///
/// Which variables the reply serves stands in driver.mergeIndexList at driver.rcpIndex; entries
/// that point past driver.rcpVars are skipped.
///
/// @param dataOffset  position of the first register byte in the reply
void storeRecipeValues(const QByteArray &reply, int dataOffset);

} // namespace dx4

/// Makes the variable of a recipe transfer; `varKind` is left as it is.
///
/// @param withData  nonzero copies the values from the recipe buffer, at most 1024 bytes, as they
///                  lie there. The rest of `data` is zeroed, all of it for a negative count or
///                  offset or without a buffer
void rcpAddrToVar(_RCP_VAR_PRO rcp, VARIABLE &var, int withData);
