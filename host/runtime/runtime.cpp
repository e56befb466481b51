// SPDX-License-Identifier: MIT
// One line with everything a host must do for it: the object that tools and panels stand on.
#include "host/runtime/runtime.h"

#include "host/base/length.h"
#include "register_tables.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace dx4::host {
namespace {

constexpr Duration longestIdle = std::chrono::milliseconds(100);
constexpr Duration firstOpenDelay = std::chrono::milliseconds(50);
constexpr Duration longestOpenDelay = std::chrono::seconds(2);

void sleepFor(Duration span)
{
    std::this_thread::sleep_for(span);
}

/// The latest of the times of all blocks that have the register. Blocks are ordered by station,
/// type and address: those of other stations are not looked at.
std::optional<Duration> latest(const std::map<BlockKey, Duration> &times, int station,
                               const QString &regType, int address)
{
    std::optional<Duration> latest;
    BlockKey first;
    first.station = station;
    first.regType = regType;
    for (auto block = times.lower_bound(first); block != times.end(); ++block) {
        const auto &[key, time] = *block;
        if (key.station != station || key.regType != regType || key.address > address)
            break;
        if (address < key.address + key.count && (!latest || time > *latest))
            latest = time;
    }
    return latest;
}

} // namespace

Runtime::Runtime(std::unique_ptr<Plugin> plugin, Line &line, const RuntimeSettings &settings)
    : m_line(line)
    , m_settings(settings)
    , m_link(std::move(plugin), settings.link)
    , m_guard(line)
    , m_breaker(settings.breaker)
    , m_exchange(line, m_guard, m_breaker)
    , m_cycle(m_link, m_exchange)
    , m_desk(m_link)
    , m_stop(m_link, settings.stops, [this](int station) { return outlookOf(station); })
    , m_start(line.now())
    , m_lastUser(line.now())
{
    if (!m_settings.pause)
        m_settings.pause = sleepFor;
    m_guard.setHurry([this] { return isHurried(); });
    m_stop.setBroadcast(settings.stopBroadcast);
    m_desk.setGate([this](const WriteWish &wish) { return gate(wish); });
    m_desk.setStopTest([this](const WriteWish &wish) { return isStop(wish); });
    m_exchange.setPurposes([this](const FRAME_PRO &request) { return purposeOf(request); },
                           [this](int station) { return m_stop.takeAllowance(station); });
}

Runtime::~Runtime() = default;

void Runtime::setPlan(const Plan &plan)
{
    m_nextPlan = plan;
    m_link.handlerErrors().during([this] { applyPlan(); });
}

/// A reply is stored against the lists that its request came from: they change between two
/// requests.
void Runtime::applyPlan()
{
    if (!m_nextPlan || !m_link.api().state->sendFrames.isEmpty())
        return;
    const QList<KEY_ADDRESS> blocks = m_nextPlan->blocks;
    m_link.poll(blocks);
    m_blocks = lengthOf(blocks);
    std::set<int> stations;
    for (const KEY_ADDRESS &block : blocks)
        stations.insert(block.station);
    m_breaker.setPolled(stations);
    m_nextPlan.reset();
    for (const QString &text : unreadable(blocks))
        notice(text);
}

bool Runtime::isStop(const WriteWish &wish) const
{
    return wish.regType == REG_LIST[TypeCw] && m_stop.isStop(wish.station, wish.values);
}

bool Runtime::mayBeWritten(int station) const
{
    return m_settings.stations.isEmpty() || m_settings.stations.contains(station);
}

Refusal Runtime::gate(const WriteWish &wish) const
{
    const bool isCommand = wish.regType == REG_LIST[TypeCw];
    const bool stops = isStop(wish);
    // A station that a reload took out of the plant keeps a stop that it still owes.
    if (!stops && !mayBeWritten(wish.station))
        return Refusal::NotConfigured;
    const Refusal stopping = stopGate(wish, stops);
    if (stopping != Refusal::None)
        return stopping;
    if (!m_line.isOpen() || (!stops && m_breaker.isLeftAlone(wish.station)))
        return Refusal::NotConnected;
    // A drive that has never been heard must not be started blindly; stopping it does no harm.
    if (isCommand && !stops && !m_breaker.hasAnswered(wish.station))
        return Refusal::NotAnswered;
    return Refusal::None;
}

bool Runtime::ensureOpen()
{
    if (m_line.isOpen()) {
        m_wasOpen = true;
        return true;
    }
    if (m_wasOpen) {
        m_cycle.noteLineDown();
        lineWentDown();
    }
    if (m_line.now() < m_openAt)
        return false;
    m_openDelay = std::clamp(2 * m_openDelay, firstOpenDelay, longestOpenDelay);
    if (m_line.open(&m_lineError)) {
        m_lineError.clear();
        m_guard.forgetLine();
        m_wasOpen = true;
        m_stop.resume(m_line.now(), m_settings.stopBudget);
        return true;
    }
    m_openAt = m_line.now() + m_openDelay;
    return false;
}

Runtime::Step Runtime::step()
{
    Step done = Step::Idle;
    m_link.handlerErrors().during([&] {
        m_desk.deliver();
        done = takeStep();
        m_desk.deliver();
    });
    return done;
}

Runtime::Step Runtime::takeStep()
{
    watchUser();
    if (!ensureOpen())
        return Step::LineDown;
    listen();
    if (m_stop.isUrgent(m_line.now()))
        return stopStep();
    lookAfterSilent();
    if (isHurried())
        return Step::Idle;
    return cycleStep();
}

bool Runtime::isHurried() const
{
    const bool isAsked = m_settings.isHurried && m_settings.isHurried();
    return isAsked && m_stopCalls == 0;
}

/// Asks for the next request of a station that is not left alone.
Runtime::Step Runtime::cycleStep()
{
    const int waiting = m_link.waitingWrites() + m_link.waitingConditionReads() + m_desk.pending();
    const int mostPassedOver = m_blocks + waiting;
    // Behind a few writes in a row the driver is for a read, and idle once where none is polled.
    bool mayAskAgain = waiting > 0;
    for (int passed = 0; passed <= mostPassedOver; ++passed) {
        m_desk.prepare();
        const Step step = m_cycle.step();
        if (step == Step::Idle && !std::exchange(mayAskAgain, false))
            break;
        if (step == Step::Idle)
            continue;
        settle(step);
        if (m_cycle.reply().kind != Reply::Kind::NotAsked)
            return step;
    }
    applyPlan();
    return Step::Idle;
}

void Runtime::settle(Step step)
{
    if (m_cycle.reply().kind == Reply::Kind::NotAsked) {
        m_desk.afterStep(m_cycle, step, ReplyVerdict {});
    } else if (step == Step::LineDown) {
        noteKnowledge(step);
        m_desk.afterStep(m_cycle, step, ReplyVerdict {}); // the request may have left
        lineWentDown();
    } else {
        settleAsked(step);
    }
    applyPlan();
}

void Runtime::settleAsked(Step step)
{
    const FRAME_PRO &request = m_cycle.request();
    m_openDelay = Duration { 0 }; // the line carried an exchange
    const bool isSilent = step == Step::GivenUp && wasAsked(m_cycle.reply())
        && !isAnswer(m_guard.report().verdict.cause);
    if (isSilent && !isUnproven())
        m_breaker.noteGiveUp(request.var.station, m_line.now());
    noteKnowledge(step);
    settleStop(step);
    m_desk.afterStep(m_cycle, step, m_guard.report().verdict);
    tellNotice();
}

void Runtime::tellNotice()
{
    const QString text = m_guard.takeNotice();
    if (!text.isEmpty())
        notice(text);
}

void Runtime::notice(const QString &text)
{
    if (m_notice)
        m_link.handlerErrors().call([&] { m_notice(text); });
}

/// A write that was sent and not confirmed may have been carried out: what was known of its
/// registers before says nothing any more. After a refusal that is final it does.
void Runtime::noteKnowledge(Step step)
{
    const BlockKey key = blockOf(m_cycle.request());
    const bool isRefused = step != Step::LineDown && !m_guard.report().verdict.canRetry();
    if (step == Step::Served)
        m_known[key] = m_line.now();
    else if (key.isWrite && !isRefused)
        m_doubts[key] = m_line.now();
}

/// A command that waited while the line was down must not start a drive minutes later.
void Runtime::lineWentDown()
{
    m_wasOpen = false;
    m_openAt = m_line.now() + m_openDelay;
    m_desk.abandon(WriteEnd::TimedOut, Refusal::None, QStringLiteral("the line broke"));
    m_link.failWrites();
}

void Runtime::dropWrites(const QString &reason)
{
    m_link.handlerErrors().during([&] {
        m_link.failWrites();
        m_desk.abandon(WriteEnd::Refused, Refusal::NotConnected, reason);
        m_desk.deliver();
    });
}

void Runtime::run(const std::function<bool()> &enough)
{
    bool wasNews = false;
    while (!enough()) {
        const int before = m_desk.reported();
        const Step done = step();
        const bool isNews = m_desk.reported() != before;
        // Whoever waits for an outcome is asked at once. Not twice in a row: a handler that answers
        // each refusal by another write would take all of the processor.
        const bool isAskedFirst = isNews && !wasNews;
        if ((done == Step::Idle || done == Step::LineDown) && !isAskedFirst)
            m_settings.pause(idleTime());
        wasNews = isNews;
    }
}

Duration Runtime::idleTime() const
{
    const std::optional<Duration> probe = m_breaker.nextProbe();
    Duration next = m_line.now() + longestIdle;
    if (!m_line.isOpen())
        next = std::min(next, m_openAt);
    else if (probe)
        next = std::min(next, *probe);
    const std::optional<Duration> stop = m_stop.nextTry(m_line.now());
    if (m_line.isOpen() && stop)
        next = std::min(next, *stop);
    return std::max(next - m_line.now(), Duration { 1000 });
}

Value Runtime::value(int station, const QString &regType, int address) const
{
    const RegisterState state = m_link.registerState(station, regType, address);
    const std::optional<quint16> waiting = m_desk.waitingValue(station, regType, address);
    const std::optional<Duration> time = latest(m_known, station, regType, address);
    const std::optional<Duration> doubt = latest(m_doubts, station, regType, address);
    Value value;
    value.value = waiting.value_or(state.value);
    value.known = time.has_value();
    value.failed = state.failed;
    value.writePending = waiting || state.writePending;
    value.age = time ? m_line.now() - *time : Duration { 0 };
    value.stale = !time || (doubt && *doubt >= *time) || value.age > m_settings.staleAfter
        || !m_line.isOpen() || m_breaker.isLeftAlone(station);
    return value;
}

void Runtime::alarm(const QString &text)
{
    if (m_alarm)
        m_link.handlerErrors().call([&] { m_alarm(text); });
}

} // namespace dx4::host
