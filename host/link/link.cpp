// SPDX-License-Identifier: MIT
// One link: a loaded driver with everything that a host must lend it.
#include "host/link/link.h"

#include "host/base/length.h"

#include <algorithm>
#include <utility>

namespace dx4::host {
namespace {

constexpr int recipeBufferUnits = 65536; // every 16-bit offset that a recipe record may name

// Writes and condition reads that the driver serves in a row before a polled block has its turn.
constexpr int mostInARow = 5;

thread_local Link *callingLink = nullptr;

bool holds(const QList<VARIABLE> &list, int tag)
{
    return std::any_of(list.begin(), list.end(),
                       [tag](const VARIABLE &request) { return request.varKind == tag; });
}

} // namespace

/// Names the link whose driver is being called on this thread.
///
/// The driver's callback carries no pointer of the host's, and its link number cannot tell two
/// loaded copies apart: recipe values come with 0 and condition reads with -1. It runs on the
/// thread of the call that caused it, before that call returns, so the caller is the link. Calls
/// made from inside a callback nest.
class Link::Scope {
public:
    explicit Scope(Link *link)
        : m_outer(std::exchange(callingLink, link))
    {
    }
    ~Scope() { callingLink = m_outer; }
    Scope(const Scope &) = delete;
    Scope &operator=(const Scope &) = delete;

private:
    Link *m_outer;
};

QByteArray LinkSettings::propertyText() const
{
    return QStringLiteral("%1#%2#0#%3#%4")
        .arg(linkNumber)
        .arg(writesStayLocal ? 1 : 0)
        .arg(retryLimit)
        .arg(blockSize)
        .toLatin1();
}

Link::Link(std::unique_ptr<Plugin> plugin, const LinkSettings &settings)
    : m_plugin(notNull(std::move(plugin)))
    , m_settings(settings)
    , m_sharedBlock(hostBlockBytes, 0)
    , m_recipeBuffer(recipeBufferUnits, 0)
{
    int result = 0;
    const QByteArray property = settings.propertyText();
    api().setAddrValueChangeCallBack(&Link::dispatch);
    api().initProperty(m_sharedBlock.data(), 0, m_recipeBuffer.data(), &result,
                       property.constData(), &m_mutex);
}

Link::~Link()
{
    api().setAddrValueChangeCallBack(nullptr);
}

void Link::poll(const QList<KEY_ADDRESS> &blocks)
{
    QList<VARIABLE> reads;
    reads.reserve(blocks.size());
    VARIABLE read;
    read.varKind = cyclicReadKind;
    for (const KEY_ADDRESS &block : blocks) {
        read.station = block.station;
        read.regType = block.regType;
        read.address = block.address;
        read.count = block.count;
        reads.append(read);
    }
    m_errors.during([&] {
        const Scope scope(this);
        QList<KEY_ADDRESS> merged = blocks;
        api().addrMerge(merged);
        api().state->readList.swap(reads);
    });
}

bool Link::nextFrame(FRAME_PRO &frame)
{
    return api().getSendFrame(frame) == FrameReady;
}

ReplyResult Link::handReply(const QByteArray &bytes, QString *errorText)
{
    QByteArray reply = bytes;
    QString text;
    int result = NoRequestPending;
    m_errors.during([&] {
        const Scope scope(this);
        result = api().dealRcvFrame(reply, text);
        if (errorText)
            *errorText = text;
    });
    return static_cast<ReplyResult>(result);
}

QVector<quint16> Link::values(int station, const QString &regType, int address, int count)
{
    QVector<quint16> result(std::max(count, 0));
    std::vector<unsigned char> bytes(static_cast<size_t>(result.size()) * 2, 0);
    api().getData(station, regType, address, lengthOf(result), bytes.data());
    for (int i = 0; i < result.size(); ++i) {
        const auto low = static_cast<size_t>(i) * 2;
        result[i] = static_cast<quint16>(bytes[low] + 256 * bytes[low + 1]);
    }
    return result;
}

/// The register's record in the driver's cache; null where it has none.
///
/// The driver may move records, and a host may empty its list: a remembered place is a hint that
/// the record itself has to bear out. Places of new records are noted all at once, so that looking
/// up each of many costs the same.
const _DATA_ *Link::findRecord(int station, const QString &regType, int address) const
{
    const auto &records = std::as_const(api().state->dataAreas);
    const auto isMeant = [&](const _DATA_ &record) {
        return record.station == station && record.address == address && record.regType == regType;
    };
    const RegisterKey key { station, address, regType };
    notePlaces();
    const auto place = m_places.find(key);
    const bool isHinted = place != m_places.end() && place->second < records.size();
    if (isHinted && isMeant(records.at(place->second)))
        return &records.at(place->second);
    const auto found = std::find_if(records.begin(), records.end(), isMeant);
    if (found == records.end())
        return nullptr;
    m_places[key] = static_cast<int>(found - records.begin());
    return &*found;
}

void Link::notePlaces() const
{
    const auto &records = std::as_const(api().state->dataAreas);
    if (records.size() < m_placed) {
        m_places.clear();
        m_placed = 0;
    }
    for (; m_placed < records.size(); ++m_placed) {
        const _DATA_ &record = records.at(m_placed);
        m_places.emplace(RegisterKey { record.station, record.address, record.regType }, m_placed);
    }
}

RegisterState Link::registerState(int station, const QString &regType, int address) const
{
    RegisterState state;
    const _DATA_ *record = findRecord(station, regType, address);
    if (!record)
        return state;
    const unsigned char *shown = record->writePending ? record->writeValue : record->value;
    state.value = static_cast<quint16>(shown[0] + 256 * shown[1]);
    state.failed = record->flag0 != 0;
    state.writePending = record->writePending != 0;
    return state;
}

void Link::write(int station, const QString &regType, int address, const QVector<quint16> &values,
                 int tag)
{
    std::vector<unsigned char> bytes;
    for (quint16 value : values) {
        bytes.push_back(static_cast<unsigned char>(value & 0xFF));
        bytes.push_back(static_cast<unsigned char>(value >> 8));
    }
    m_errors.during([&] {
        const Scope scope(this);
        api().setData(station, regType, address, lengthOf(values), bytes.data(), tag);
    });
}

void Link::addConditionRead(int station, const QString &regType, int address, int count, int tag)
{
    api().addConditionRead(wanted(station, regType, address, count), tag);
}

void Link::failWrites()
{
    const int most = triesToFailWrites();
    FRAME_PRO request;
    m_errors.during([&] {
        for (int i = 0; i < most && waitingWrites() > 0; ++i) {
            if (nextFrame(request))
                handReply(QByteArray());
        }
    });
}

void Link::failAhead(int tag)
{
    const int most = hasWrite(tag) ? triesToFailWrites() : 0;
    FRAME_PRO request;
    m_errors.during([&] {
        for (int i = 0; i < most; ++i) {
            if (!nextFrame(request))
                continue;
            if (request.var.varKind == tag)
                return;
            handReply(QByteArray());
        }
    });
}

/// Each takes its tries. After some in a row a polled block has its turn, or the driver pauses
/// where there is none. The bound is for a write that it cannot encode, which never leaves.
int Link::triesToFailWrites() const
{
    return 2 * (waitingWrites() + 2) * std::max(m_settings.retryLimit, 1);
}

int Link::waitingWrites() const
{
    return lengthOf(api().state->writeList);
}

int Link::waitingConditionReads() const
{
    return lengthOf(api().state->conditionList);
}

bool Link::sendsWriteNext() const
{
    const korvane_dx4 &state = *api().state;
    return state.sendFrames.isEmpty() && state.writeList.isEmpty() && state.tryCount < mostInARow;
}

bool Link::hasWrite(int tag) const
{
    return holds(api().state->writeList, tag);
}

bool Link::hasConditionRead(int tag) const
{
    return holds(api().state->conditionList, tag);
}

void Link::dispatch(int linkNumber, int station, QString &name, int address)
{
    Link *const link = callingLink;
    if (link && link->m_handler)
        link->m_errors.call([&] { link->m_handler({ linkNumber, station, name, address }); });
}

KEY_ADDRESS wanted(int station, const QString &regType, int address, int count)
{
    KEY_ADDRESS key;
    key.station = station;
    key.regType = regType;
    key.address = address;
    key.count = count;
    return key;
}

} // namespace dx4::host
