// SPDX-License-Identifier: MIT
// The records of the boundary by reference. In the plug-in some of them stand in lists alone, whose
// type says nothing of what is in them.
#include "driver_export.h"
#include "host_records.h"

extern "C" {

/// Names each record once, for scripts/abi.sh; nobody calls it.
KORVANE_EXPORT void boundaryRecords(const VARIABLE &, const _RCP_VAR_PRO &, const FRAME_PRO &,
                                    const _DATA_ &, const KEY_ADDRESS &)
{
}

} // extern "C"
