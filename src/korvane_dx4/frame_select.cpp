// SPDX-License-Identifier: MIT
// Which encoder serves which register type.
//
// Deliberate: what a type is not meant for is not refused. A read of "CW" or "FRE" goes to the
// monitor values, a write of "D", "SW" or "FU" to register 0. Access is the business of the address
// checks.
#include "korvane_dx4/frame_select.h"

#include "readframe/readframe.h"
#include "registers/register_type.h"
#include "writeframe/writeframe.h"

using namespace dx4;

void getReadFrame(VARIABLE &var)
{
    const RegisterTypeRow *row = rowOf(registerType(var.regType));
    if (row && row->isSingle() && row->isReadable)
        readframe_oneword(var);
    else
        readframe_word(var);
}

void getWriteFrame(VARIABLE &var)
{
    const RegisterTypeRow *row = rowOf(registerType(var.regType));
    if (row && row->isSingle() && row->isWritable)
        writeframe_oneword(var);
    else
        writeframe_word(var);
}
