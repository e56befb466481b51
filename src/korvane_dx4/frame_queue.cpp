// SPDX-License-Identifier: MIT
// driver.sendFrames: the frames of the request in progress, sent head first.
#include "korvane_dx4/frame_queue.h"

#include "korvane_dx4.h"
#include "korvane_dx4/record_copy.h"

namespace dx4 {
namespace {

// A list of one served frame, kept to be filled again: a request has one frame as a rule, and a
// 2 KB record would otherwise be allocated and freed with every request.
QList<FRAME_PRO> parkedFrame;

void park()
{
    parkedFrame.clear();
    driver.sendFrames.swap(parkedFrame);
}

} // namespace

FRAME_PRO &appendFrame(const VARIABLE &var, ExpectedReply reply)
{
    const bool canReuse = driver.sendFrames.isEmpty() && parkedFrame.size() == 1;
    if (canReuse)
        driver.sendFrames.swap(parkedFrame);
    else
        driver.sendFrames.append(FRAME_PRO());
    FRAME_PRO &frame = driver.sendFrames.last();
    frame.replyLength = reply.length;
    frame.replyDataOffset = reply.dataOffset;
    frame.replyDataLength = reply.dataLength;
    copyVariable(frame.var, var);
    return frame;
}

void removeHeadFrame()
{
    if (driver.sendFrames.size() == 1)
        park();
    else if (!driver.sendFrames.isEmpty())
        driver.sendFrames.removeFirst();
}

void dropFrames()
{
    if (driver.sendFrames.size() == 1)
        park();
    else
        driver.sendFrames.clear();
}

} // namespace dx4
