// SPDX-License-Identifier: MIT
// Writes with an outcome: each gets an id and ends exactly once.
#include "host/writes/write_desk.h"

#include "host/base/length.h"
#include "host/frames/verdict_text.h"
#include "host/link/notation.h"
#include "register_tables.h"
#include "wire/function_code.h"
#include "wire/limits.h"

#include <algorithm>

namespace dx4::host {
namespace {

using Request = QueuedWrite::Request;

constexpr int firstId = 1000; // above every tag that a host or the driver itself uses
constexpr int mostWaiting = 512; // of all stations together
constexpr int ownShare = 16; // of a station, whatever waits for the others
constexpr int functionByte = 1;
constexpr int firstDataByte = 3;

bool isParameter(const WriteWish &wish)
{
    return wish.regType == REG_LIST[TypeF];
}

/// Values in a read reply that was found good.
QVector<quint16> valuesIn(const QByteArray &reply, int count)
{
    QVector<quint16> values;
    for (int i = 0; i < count; ++i) {
        const int high = static_cast<unsigned char>(reply.at(firstDataByte + 2 * i));
        const int low = static_cast<unsigned char>(reply.at(firstDataByte + 2 * i + 1));
        values.append(static_cast<quint16>(high * 256 + low));
    }
    return values;
}

QString notConfirmed()
{
    return QStringLiteral("sent, but not confirmed: %1");
}

QString notSent()
{
    return QStringLiteral("not sent: %1");
}

QString replacedText(bool byStop)
{
    return byStop ? QStringLiteral("not sent: a stop was written after it")
                  : QStringLiteral("replaced by a newer value");
}

QString notReadBack()
{
    return QStringLiteral("echoed, but could not be read back: %1");
}

Refusal refusalOfCheck(int code)
{
    switch (code) {
    case AddressAccepted:
        return Refusal::None;
    case AddressReadOnly:
        return Refusal::Access;
    default:
        return Refusal::Range;
    }
}

} // namespace

WriteDesk::WriteDesk(Link &link)
    : m_link(link)
    , m_nextId(firstId)
{
}

int WriteDesk::submit(const WriteWish &wish)
{
    const bool isStop = m_isStop && m_isStop(wish);
    const QVector<int> replaced = m_queue.replacedBy(wish, isStop);
    Refusal refusal = refusalOf(wish);
    // A stop is always taken: no station has more than one that waits.
    if (refusal == Refusal::None && !isStop && isFull(wish.station, lengthOf(replaced)))
        refusal = Refusal::QueueFull;
    if (refusal == Refusal::None || isStop) {
        for (int id : replaced)
            finish(*m_queue.find(id), { WriteEnd::Replaced, replacedText(isStop) });
    }
    const bool isCompared = isParameter(wish) && !wish.always;
    QueuedWrite write;
    write.id = m_nextId++;
    write.wish = wish;
    write.next = isCompared ? Request::Compare : Request::Send;
    if (refusal == Refusal::None)
        m_queue.add(write);
    else
        finish(write, { WriteEnd::Refused, refusalText(refusal), refusal });
    return write.id;
}

/// What waits for a station that does not answer leaves the others their share.
bool WriteDesk::isFull(int station, int replaced) const
{
    return m_queue.size() - replaced >= mostWaiting
        && m_queue.sizeOf(station) - replaced >= ownShare;
}

Refusal WriteDesk::refusalOf(const WriteWish &wish) const
{
    if (wish.station < 1 || wish.station > lastStation)
        return Refusal::Station;
    const auto *const known = std::find(std::begin(REG_LIST), std::end(REG_LIST), wish.regType);
    if (known == std::end(REG_LIST))
        return Refusal::Access;
    const int most = isParameter(wish) ? m_link.settings().blockSize : 1;
    if (wish.values.isEmpty())
        return Refusal::Count;
    int address = -1;
    const int code = m_link.api().checkAddr(wish.regType, addressText(wish.regType, wish.address),
                                            &address, 0, 1, WriteAccess);
    const Refusal first = refusalOfCheck(code);
    if (first != Refusal::None || address != wish.address)
        return first == Refusal::None ? Refusal::Range : first;
    if (wish.values.size() > most)
        return Refusal::Count;
    const int whole = m_link.api().checkAddr(wish.regType, addressText(wish.regType, wish.address),
                                             &address, 0, lengthOf(wish.values), WriteAccess);
    if (whole != AddressAccepted)
        return refusalOfCheck(whole);
    return m_gate ? m_gate(wish) : Refusal::None;
}

void WriteDesk::prepare()
{
    noteDropped();
    if (m_link.settings().writesStayLocal)
        return keepLocal();
    QueuedWrite *const write = m_asked == 0 ? m_queue.next() : nullptr;
    const bool isRead = write && write->next != Request::Send;
    if (!write || (!isRead && !m_link.sendsWriteNext()))
        return;
    const WriteWish wish = write->wish; // handlers of the change may end the write
    m_asked = write->id;
    m_queue.passTurn(wish.station);
    if (isRead)
        return m_link.addConditionRead(wish.station, wish.regType, wish.address,
                                       lengthOf(wish.values), m_asked);
    write->handedOver = true;
    m_link.write(wish.station, wish.regType, wish.address, wish.values, m_asked);
}

/// The driver shows the values and queues nothing.
void WriteDesk::keepLocal()
{
    const QVector<int> ids = m_queue.ids();
    m_link.handlerErrors().during([&] {
        for (int id : ids) {
            const QueuedWrite *const write = m_queue.find(id);
            if (!write)
                continue; // ended by a handler of another one's change
            const WriteWish wish = write->wish;
            finish(*write, { WriteEnd::Confirmed, QStringLiteral("kept here, nothing is sent") });
            m_link.write(wish.station, wish.regType, wish.address, wish.values, id);
        }
    });
}

void WriteDesk::afterStep(const Cycle &cycle, Cycle::Step step, const ReplyVerdict &verdict)
{
    const FRAME_PRO &request = cycle.request();
    QueuedWrite *const write = m_queue.find(m_asked);
    const bool isRead = request.frame[functionByte] == ReadHoldingRegisters;
    const bool isOurs =
        write && request.var.varKind == write->id && isRead == (write->next != Request::Send);
    if (isOurs)
        settle(*write, cycle, step, verdict);
    noteDropped();
    deliver();
}

void WriteDesk::settle(QueuedWrite &write, const Cycle &cycle, Cycle::Step step,
                       const ReplyVerdict &verdict)
{
    const Reply::Kind kind = cycle.reply().kind;
    const bool wasAsked = kind != Reply::Kind::NotAsked;
    const bool wasSent = wasAsked && kind != Reply::Kind::Withheld;
    write.sent = write.sent || (write.next == Request::Send && wasSent);
    if (step != Cycle::Step::Served && step != Cycle::Step::GivenUp)
        return;
    m_asked = 0;
    if (step == Cycle::Step::Served)
        served(write, cycle.reply().bytes);
    else
        givenUp(write, verdict, wasAsked ? verdictText(verdict) : notAskedText());
}

void WriteDesk::served(QueuedWrite &write, const QByteArray &reply)
{
    const WriteWish &wish = write.wish;
    if (write.next == Request::Send && wish.readBack && isParameter(wish)) {
        write.next = Request::ReadBack;
        return;
    }
    const bool isRead = write.next != Request::Send;
    const QVector<quint16> held = isRead ? valuesIn(reply, lengthOf(wish.values)) : wish.values;
    const bool isEqual = held == wish.values;
    if (write.next == Request::Compare)
        write.before = held;
    if (write.next == Request::Compare && !isEqual)
        write.next = Request::Send;
    else if (write.next == Request::Compare)
        finish(write, { WriteEnd::Confirmed, QStringLiteral("held already, not written") });
    else if (isEqual)
        finish(write, { WriteEnd::Confirmed, QStringLiteral("confirmed") });
    else
        finish(write,
               { WriteEnd::NotTaken, QStringLiteral("echoed, but reads back another value") });
}

void WriteDesk::givenUp(const QueuedWrite &write, const ReplyVerdict &verdict,
                        const QString &reason)
{
    const bool isRejected = verdict.cause == ReplyCause::Exception;
    const WriteEnd end = isRejected ? WriteEnd::Rejected : WriteEnd::TimedOut;
    const QString text = write.next == Request::ReadBack ? notReadBack().arg(reason)
        : isRejected ? QStringLiteral("rejected with %1").arg(reason)
                     : reason;
    finish(write, { end, text, Refusal::None, verdict.exceptionCode });
}

/// Finds what left the driver without a step of its own: reads that went with a failed one, which
/// are asked again in their turn, and a write that somebody else had given up.
void WriteDesk::noteDropped()
{
    const QueuedWrite *const write = m_queue.find(m_asked);
    const bool isRead = write && write->next != Request::Send;
    if (write && (isRead ? m_link.hasConditionRead(m_asked) : m_link.hasWrite(m_asked)))
        return;
    m_asked = 0;
    if (write && !isRead)
        finish(*write,
               { WriteEnd::TimedOut,
                 (write->sent ? notConfirmed() : notSent())
                     .arg(QStringLiteral("another request went first")) });
}

/// Ends a write; its outcome waits for deliver().
void WriteDesk::finish(const QueuedWrite &write, const End &end)
{
    const WriteWish &wish = write.wish;
    m_ended.push_back({ write.id, end.kind, end.refusal, end.exceptionCode, write.sent,
                        QStringLiteral("station %1, %2: %3")
                            .arg(wish.station)
                            .arg(fullAddress(wish.regType, wish.address), end.text),
                        wish, write.before });
    m_queue.remove(write.id);
}

void WriteDesk::deliver()
{
    HandlerErrors &errors = m_link.handlerErrors();
    errors.during([&] {
        for (std::size_t left = m_ended.size(); left > 0 && !m_ended.empty(); --left) {
            const WriteOutcome outcome = m_ended.front();
            const OutcomeHandler handler = m_handler; // it may set another one
            m_ended.pop_front();
            ++m_reported;
            if (handler)
                errors.call([&] { handler(outcome); });
        }
    });
}

void WriteDesk::abandon(WriteEnd end, Refusal refusal, const QString &reason)
{
    m_asked = 0;
    const QVector<int> ids = m_queue.ids();
    for (int id : ids) {
        const QueuedWrite &write = *m_queue.find(id);
        // The station may have carried out what was sent, and has if it is being read back.
        const QString doubt = write.next == Request::ReadBack ? notReadBack() : notConfirmed();
        if (write.sent)
            finish(write, { WriteEnd::TimedOut, doubt.arg(reason) });
        else
            finish(write, { end, notSent().arg(reason), refusal });
    }
}

const char *writeEndName(WriteEnd end)
{
    switch (end) {
    case WriteEnd::Confirmed:
        return "confirmed";
    case WriteEnd::Rejected:
        return "rejected";
    case WriteEnd::TimedOut:
        return "timed out";
    case WriteEnd::Replaced:
        return "replaced";
    case WriteEnd::Refused:
        return "refused";
    case WriteEnd::NotTaken:
        return "not taken";
    }
    return "";
}

QString refusalText(Refusal refusal)
{
    switch (refusal) {
    case Refusal::None:
        return QString();
    case Refusal::Station:
        return QStringLiteral("no such station; stations are 1 to 247");
    case Refusal::Access:
        return QStringLiteral("cannot be written; F, CW and FRE can");
    case Refusal::Count:
        return QStringLiteral("wrong number of values; CW and FRE take one, F up to a block");
    case Refusal::Range:
        return QStringLiteral("no such address, or the run leaves its group");
    case Refusal::NotConnected:
        return QStringLiteral("the line is closed or the station does not answer");
    case Refusal::NotAnswered:
        return QStringLiteral("the station has not answered yet");
    case Refusal::QueueFull:
        return QStringLiteral("too many writes are waiting");
    case Refusal::Stopping:
        return QStringLiteral("a stop is under way");
    case Refusal::NotConfigured:
        return QStringLiteral("the configuration does not name the station");
    }
    return QString();
}

} // namespace dx4::host
