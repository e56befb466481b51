// SPDX-License-Identifier: MIT
// The real driver and the model side by side, each with a host of its own around it.
#include "pair.h"

#include "arguments.h"
#include "wrap.h"

namespace model {

namespace {

Pair *listening = nullptr;

constexpr int deepestCallback = 2;
constexpr int mostActions = 40;

template <typename Side> QByteArray read(Side &side, int station, const QString &type, int address)
{
    QByteArray seen(4, '\xEE');
    side.dx4.getData(station, type, address, 2, reinterpret_cast<unsigned char *>(seen.data()));
    return seen;
}

template <typename Side>
void write(Side &side, int station, const QString &type, int address, int value)
{
    unsigned char data[4] = { byteOf(value, 0), 0, byteOf(value, 0), 1 };
    side.dx4.setData(station, type, address, 1 + value % 2, data, 7);
}

template <typename Side>
void requestRead(Side &side, int station, const QString &type, int address, int count)
{
    KEY_ADDRESS key;
    key.station = station;
    key.regType = type;
    key.address = address;
    key.count = count;
    key.subAddress = count % 2 ? -1 : 0;
    side.dx4.addConditionRead(key, 9);
}

// Calls back into the driver; the choice depends on nothing that could differ between the sides.
template <typename Side>
void callBack(Side &side, unsigned plan, int station, const QString &type, int address)
{
    const int ordinal = static_cast<int>(side.heard.size());
    switch ((plan / 4 + static_cast<unsigned>(ordinal) * 5) % 7) {
    case 1:
        read(side, station, type, wrap(address + 1LL));
        return;
    case 2:
        return write(side, station, type, address, ordinal % 3);
    case 3:
        return write(side, station, type, wrap(address + 1LL), ordinal);
    case 4:
        return requestRead(side, station, type, address, ordinal % 5);
    case 5: {
        const VARIABLE last = side.state.conditionVar;
        return requestRead(side, last.station, last.regType, last.address, last.count);
    }
    case 6:
        return write(side, 1, QStringLiteral("F"), ordinal % 4, ordinal % 3);
    default:
        return;
    }
}

template <typename Side>
void hear(Side &side, unsigned plan, int linkId, int station, QString &name, int address)
{
    HeardCall call { linkId, station, name, address, {} };
    const int suffix = static_cast<int>(name.indexOf(QLatin1Char('_')));
    const QString type = suffix < 0 ? name : name.left(suffix);
    if (side.mutex.tryLock())
        side.mutex.unlock();
    else
        side.lockWasFree = false;
    if (plan & 1U)
        call.seen = read(side, station, type, address);
    side.heard.push_back(call);
    if (plan & 2U)
        name = QStringLiteral("altered");
    if (plan < 4 || side.depth >= deepestCallback || side.heard.size() > mostActions)
        return;
    ++side.depth;
    callBack(side, plan, station, type, address);
    --side.depth;
}

void hearReal(int linkId, int station, QString &name, int address)
{
    if (listening)
        hear(listening->real, listening->callbackPlan, linkId, station, name, address);
}

} // namespace

HostSide::HostSide()
    : block(60117, 0)
    , recipe(recipeWords, 0)
{
}

RealSide::RealSide(const EntryPoints &entries)
    : dx4(entries)
    , state(*entries.state)
{
}

Pair::Pair(const EntryPoints &entries)
    : real(entries)
{
    listening = this;
    makeFresh(real.state);
    for (int i = 0; i < recipeWords; ++i) {
        real.recipe[static_cast<std::size_t>(i)] = static_cast<unsigned short>(i * 257);
        model.recipe[static_cast<std::size_t>(i)] = static_cast<unsigned short>(i * 257);
    }
}

Pair::~Pair()
{
    // No pointer into this pair may stay behind in the driver.
    makeFresh(real.state);
    listening = nullptr;
}

void Pair::listen(bool on)
{
    real.dx4.setAddrValueChangeCallBack(on ? &hearReal : nullptr);
    if (!on)
        return model.dx4.setAddrValueChangeCallBack(nullptr);
    model.dx4.setAddrValueChangeCallBack(
        [this](int linkId, int station, QString &name, int address) {
            hear(model, callbackPlan, linkId, station, name, address);
        });
}

} // namespace model
