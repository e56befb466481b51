// SPDX-License-Identifier: MIT
// driver.sendFrames: the frames of the request in progress, sent head first.
#include "frames/frame_queue.h"

#include "frames/record_copy.h"
#include "frames/spare_record.h"
#include "korvane_dx4.h"

namespace dx4 {
namespace {

SpareRecord<FRAME_PRO> spareFrame;

} // namespace

FRAME_PRO &appendFrame(const VARIABLE &var, ExpectedReply reply)
{
    FRAME_PRO &frame = spareFrame.appendTo(driver.sendFrames);
    frame.replyLength = reply.length;
    frame.replyDataOffset = reply.dataOffset;
    frame.replyDataLength = reply.dataLength;
    copyVariable(frame.var, var);
    return frame;
}

void removeHeadFrame()
{
    spareFrame.removeHead(driver.sendFrames);
}

void dropFrames()
{
    spareFrame.clear(driver.sendFrames);
}

} // namespace dx4
