// SPDX-License-Identifier: MIT
// The driver's one object, and the start of a link.
#include "korvane_dx4.h"

#include "driver_api.h"
#include "frames/frame_queue.h"
#include "korvane_dx4/call_watch.h"
#include "korvane_dx4/data_area_index.h"
#include "wire/wrap.h"

#include <QStringList>

#include <cstddef>

using namespace dx4;

KORVANE_EXPORT korvane_dx4 driver;

// Hosts reach into the object. With Qt 5 a list is one pointer.
constexpr std::size_t firstList = sizeof(void *) == 8 ? 64 : 40; // bytes, as all of these
static_assert(offsetof(korvane_dx4, valueChangeCallback) == 0);
static_assert(offsetof(korvane_dx4, readList) == firstList);
static_assert(offsetof(korvane_dx4, conditionVar) == firstList + 8 * sizeof(QList<int>));
static_assert(offsetof(korvane_dx4, curVar)
              == offsetof(korvane_dx4, conditionVar) + sizeof(VARIABLE));
static_assert(offsetof(korvane_dx4, phase) == offsetof(korvane_dx4, curVar) + sizeof(VARIABLE));
static_assert(offsetof(korvane_dx4, sendFrames) == stringPlace(offsetof(korvane_dx4, phase) + 36));
static_assert(sizeof(korvane_dx4)
              == offsetof(korvane_dx4, sendFrames) + sizeof(QList<FRAME_PRO>) + sizeof(void *));

namespace {

constexpr int settingCount = 5;
constexpr int blocksPerBitBlock = 8; // a bit block may span this many blocks

// The five settings, or none of them when the text has fewer fields.
void takeSettings(const char *propertyText)
{
    const QStringList fields = QString::fromLatin1(propertyText).split(QLatin1Char('#'));
    if (fields.size() < settingCount)
        return;
    driver.linkId = fields.at(0).toInt();
    driver.writesLocalOnly = fields.at(1).toInt();
    driver.property2 = fields.at(2).toInt();
    driver.retryLimit = fields.at(3).toInt();
    driver.blockSize = fields.at(4).toInt();
}

void emptyLists()
{
    driver.readList.clear();
    driver.writeList.clear();
    driver.conditionList.clear();
    driver.dataAreas.clear();
    dataAreaIndex.forget();
    dropFrames();
}

void resetCounters()
{
    driver.phase = PhaseIdle;
    driver.tryCount = 0;
    driver.spare1 = 0;
    driver.failCount = 0;
    driver.lastFailed = 0;
    driver.writeBlockSize = driver.blockSize;
    driver.bitBlockSize = wrapMul(driver.blockSize, blocksPerBitBlock);
    driver.spare2 = 0;
    driver.spare3 = 1;
}

} // namespace

korvane_dx4::korvane_dx4()
{
    const QStringList names = QString(QLatin1String("F,D,CW,SW,FRE,FU")).split(QLatin1Char(','));
    for (const QString &name : names)
        regTypeList.append(name);
}

int intf_initProperty(unsigned char *hostBlock, int hostParam, unsigned short *recipeBuffer,
                      int *result, const char *propertyText, QMutex *hostMutex)
{
    [[maybe_unused]] const CallWatch watch("intf_initProperty");
    if (result)
        *result = 0;
    takeSettings(propertyText);
    driver.hostBlock = hostBlock;
    driver.hostParam = hostParam;
    driver.recipeBuffer = recipeBuffer;
    driver.hostMutex = hostMutex;
    emptyLists();
    resetCounters();
    return alwaysDone;
}
