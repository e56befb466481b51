// SPDX-License-Identifier: MIT
// Brings the driver, through its entry points, to a request of any kind that waits for its reply.
#include "pending_request.h"

#include "wrap.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

constexpr int recipeOffset = 4; // units
constexpr std::size_t recipeUnits = 192;

FuzzHost *listening = nullptr;

// Reads what it is told of, as a host does, and spoils the name it was lent.
void hear(int linkId, int station, QString &name, int address)
{
    listening->heard.push_back({ linkId, station, name, address });
    unsigned char seen[2];
    intf_getData(station, name, address, 1, seen);
    static const QString altered = QStringLiteral("altered");
    name = altered;
}

KEY_ADDRESS keyOf(const RequestPlan &plan)
{
    KEY_ADDRESS key;
    key.station = plan.station;
    key.regType = plan.type;
    key.address = plan.address;
    key.count = plan.count;
    return key;
}

void queueWrite(const RequestPlan &plan)
{
    std::vector<unsigned char> data;
    data.reserve(2 * static_cast<std::size_t>(std::max(plan.count, 0)));
    for (int i = 0; i < plan.count; ++i) {
        data.push_back(model::byteOf(plan.writtenValue + i, 0));
        data.push_back(model::byteOf(plan.writtenValue + i, 1));
    }
    intf_setData(plan.station, plan.type, plan.address, plan.count, data.data(), 1);
}

void queueRecipe(FuzzHost &host, const RequestPlan &plan)
{
    _RCP_VAR_PRO recipe;
    recipe.linkId = 1;
    recipe.station = plan.station;
    recipe.regType = plan.type;
    recipe.address = plan.address;
    recipe.count = plan.count;
    recipe.bufferOffset = recipeOffset;
    intf_setRcpAddress({ recipe });
    driver.rcpSendVars = driver.rcpVars;
    driver.mergeIndexList = { 0 };
    host.block[plan.kind == RequestKind::RecipeWrite ? 60115 : 60116] = 1;
}

void fillCache(const RequestPlan &plan)
{
    for (int i = 0; i < plan.count; ++i) {
        _DATA_ area;
        area.station = plan.station;
        area.regType = plan.type;
        area.address = plan.address + i;
        area.flags = plan.isMonitored ? 1 : 0;
        area.value[0] = model::byteOf(plan.firstValue + i, 0);
        area.value[1] = model::byteOf(plan.firstValue + i, 1);
        driver.dataAreas.append(area);
    }
}

class Digest {
public:
    void add(const void *bytes, std::size_t size)
    {
        const std::string_view text(static_cast<const char *>(bytes), size);
        m_value = m_value * 31 + std::hash<std::string_view>()(text);
    }
    void add(int number) { add(&number, sizeof number); }
    void add(const QString &text)
    {
        add(text.constData(), static_cast<std::size_t>(text.size()) * sizeof(QChar));
    }
    void add(const VARIABLE &var)
    {
        for (int number : { var.varKind, var.station, var.address, var.count })
            add(number);
        add(var.regType);
        add(var.data, sizeof var.data);
    }
    void add(const QList<VARIABLE> &list)
    {
        add(static_cast<int>(list.size()));
        for (const VARIABLE &var : list)
            add(var);
    }
    std::size_t value() const { return m_value; }

private:
    std::size_t m_value = 0;
};

void addFrames(Digest &digest)
{
    for (const FRAME_PRO &frame : std::as_const(driver.sendFrames)) {
        digest.add(frame.frame, static_cast<std::size_t>(frame.sendLength));
        for (int number : { frame.replyLength, frame.replyDataOffset, frame.replyDataLength })
            digest.add(number);
        digest.add(frame.var);
    }
}

void addCache(Digest &digest)
{
    for (const _DATA_ &area : std::as_const(driver.dataAreas)) {
        for (int number : { area.flag0 * 256 + area.writePending, area.word1, area.flags,
                            area.bitMask, area.station, area.address })
            digest.add(number);
        digest.add(area.regType);
        digest.add(area.value, sizeof area.value);
        digest.add(area.writeValue, sizeof area.writeValue);
    }
}

// Each register costs a record of the cache.
int drawCount(model::ByteSource &source, bool mayBeLong)
{
    if (!source.onceIn(8))
        return 1 + source.below(6);
    return (mayBeLong ? source.below(130) : source.below(13)) - 4;
}

} // namespace

RequestPlan drawPlan(model::ByteSource &source, bool mayBeLong)
{
    // Made once: every allocation counts at this rate.
    static const QString types[] = { QStringLiteral("F"),  QStringLiteral("D"),
                                     QStringLiteral("CW"), QStringLiteral("FRE"),
                                     QStringLiteral("SW"), QStringLiteral("FU"),
                                     QStringLiteral("F"),  QStringLiteral("D"),
                                     QStringLiteral("XY") };
    RequestPlan plan;
    plan.kind = static_cast<RequestKind>(source.below(6));
    plan.type = source.pick(types);
    plan.station = source.onceIn(4) ? source.byte() : 1;
    plan.address = source.onceIn(2) ? source.below(3000) - 4 : source.below(32);
    plan.count = drawCount(source, mayBeLong);
    plan.retryLimit = 1 + source.below(4);
    plan.badRepliesBefore = source.below(plan.retryLimit);
    plan.firstValue = source.byte() * 257;
    plan.writtenValue = source.byte() * 257;
    plan.isMonitored = !source.onceIn(4);
    return plan;
}

FuzzHost::FuzzHost()
    : block(60117, 0)
    , recipe(recipeUnits, 0)
{
    listening = this;
    intf_setAddrValueChangeCallBack(&hear);
}

void FuzzHost::queue(const RequestPlan &plan)
{
    static const char *const properties[] = { "1#0#0#1#125", "1#0#0#2#125", "1#0#0#3#125",
                                              "1#0#0#4#125" };
    block[60115] = block[60116] = 0;
    driver.rcpSendVars.clear();
    driver.rcpIndex = 0;
    intf_initProperty(block.data(), 0, recipe.data(), nullptr, properties[plan.retryLimit - 1],
                      &mutex);
    fillCache(plan);
    KEY_ADDRESS key = keyOf(plan);
    if (plan.kind == RequestKind::CyclicRead) {
        VARIABLE var;
        var.varKind = 4;
        var.station = key.station;
        var.regType = key.regType;
        var.address = key.address;
        var.count = key.count;
        driver.readList.append(var);
    } else if (plan.kind == RequestKind::ConditionRead) {
        intf_addConditionRead(key, 3);
    } else if (plan.kind == RequestKind::Write) {
        queueWrite(plan);
    } else if (plan.kind != RequestKind::None) {
        queueRecipe(*this, plan);
    }
    heard.clear();
}

std::vector<int> shownValues(const RequestPlan &plan)
{
    std::vector<int> values;
    if (plan.count <= 0)
        return values;
    // Exactly as long as the driver may write.
    const auto count = static_cast<std::size_t>(plan.count);
    std::vector<unsigned char> bytes(2 * count, 0);
    intf_getData(plan.station, plan.type, plan.address, plan.count, bytes.data());
    values.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        values.push_back(bytes[2 * i] + 256 * bytes[2 * i + 1]);
    return values;
}

std::size_t stateDigest()
{
    Digest digest;
    digest.add(driver.readList);
    digest.add(driver.writeList);
    digest.add(driver.conditionList);
    digest.add(driver.conditionVar);
    digest.add(driver.curVar);
    for (int number : { driver.linkId, driver.writesLocalOnly, driver.retryLimit, driver.blockSize,
                        driver.phase, driver.tryCount, driver.bitBlockSize, driver.writeBlockSize,
                        driver.lastFailed, driver.spare3, driver.rcpIndex })
        digest.add(number);
    addCache(digest);
    addFrames(digest);
    return digest.value();
}
