// SPDX-License-Identifier: MIT
// Any bytes as the reply to a pending request of any kind, against the rules of the line.
//
// The rules are written out here rather than taken from the model, which is slower by far.
#include "driver_model.h"
#include "expect.h"
#include "fuzz_target.h"
#include "pending_request.h"
#include "rare.h"
#include "wrap.h"

#include <charconv>
#include <iterator>

namespace {

constexpr int crcLength = 2;

bool isRead(const RequestPlan &plan)
{
    return plan.kind == RequestKind::CyclicRead || plan.kind == RequestKind::ConditionRead
        || plan.kind == RequestKind::RecipeRead;
}

// Bytes behind the end count as 0.
int byteAt(const QByteArray &reply, int position)
{
    return position < reply.size() ? static_cast<unsigned char>(reply.at(position)) : 0;
}

int wordAt(const QByteArray &reply, int position)
{
    return byteAt(reply, position) * 256 + byteAt(reply, position + 1);
}

int crcOf(const QByteArray &reply, int length)
{
    return model::crcOf(reinterpret_cast<const unsigned char *>(reply.constData()), length);
}

bool isRight(const RequestPlan &plan, const QByteArray &reply)
{
    const int size = static_cast<int>(reply.size());
    const int wanted = isRead(plan) ? 2 * plan.count + 5 : 8;
    if (size != wanted || size < crcLength)
        return false;
    const int crc = crcOf(reply, size - crcLength);
    return wordAt(reply, size - crcLength) == (crc & 0xFF) * 256 + crc / 256;
}

void putCrc(QByteArray &reply)
{
    const int crc = crcOf(reply, static_cast<int>(reply.size()));
    reply.append(static_cast<char>(model::byteOf(crc, 0)));
    reply.append(static_cast<char>(model::byteOf(crc, 1)));
}

// The rest of the input: as it stands, with a CRC behind it, or cut and filled to the right length.
// The last one may get one byte changed afterwards.
QByteArray replyOf(int shape, const FRAME_PRO &frame, const char *bytes, int size)
{
    QByteArray reply(bytes, size);
    if (shape == 0)
        return reply;
    if (shape >= 2) {
        const int kept = std::max(0, frame.replyLength - crcLength);
        reply = reply.leftJustified(kept, '\x5A', true);
    }
    putCrc(reply);
    if (shape == 3 && size > 1) {
        const int position = static_cast<unsigned char>(bytes[0]) % static_cast<int>(reply.size());
        reply[position] = static_cast<char>(reply.at(position) ^ bytes[1]);
    }
    return reply;
}

void appendNumber(QString &text, int number)
{
    char digits[12];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    text += QLatin1String(digits, static_cast<int>(end - digits));
}

QString errorLine(const RequestPlan &plan, int received)
{
    QString text;
    text.reserve(64);
    appendNumber(text, plan.station);
    text += QLatin1Char('#');
    text += plan.type;
    appendNumber(text, plan.address);
    text += QLatin1Char('(');
    appendNumber(text, plan.count);
    text += QLatin1String(")(");
    appendNumber(text, received);
    text += QLatin1Char(')');
    return text;
}

int cachedValue(const RequestPlan &plan, int index)
{
    return (plan.firstValue + index) & 0xFFFF;
}

// Reports of registers that changed from one value to the other, in order.
template <typename Before, typename After>
void addReports(std::vector<Report> &reports, const RequestPlan &plan, Before before, After after)
{
    for (int i = 0; i < plan.count && plan.isMonitored; ++i) {
        if (before(i) != after(i))
            reports.push_back({ 1, plan.station, plan.type, plan.address + i });
    }
}

template <typename Wanted>
void expectShown(const RequestPlan &plan, Wanted wanted, const char *rule)
{
    const std::vector<int> shown = shownValues(plan);
    for (int i = 0; i < plan.count; ++i)
        expect(shown[static_cast<std::size_t>(i)] == wanted(i), rule);
}

void addClosingReports(std::vector<Report> &reports, const RequestPlan &plan, bool failed)
{
    if (plan.kind == RequestKind::ConditionRead)
        reports.push_back({ -1, -1, QStringLiteral("-1"), failed ? -1 : 0 });
}

void checkReadAccepted(const FuzzHost &host, const RequestPlan &plan, const QByteArray &reply)
{
    const bool isKnown = model::isRegisterType(plan.type);
    std::vector<Report> reports;
    if (isKnown) {
        const auto received = [&](int i) { return wordAt(reply, 3 + 2 * i); };
        addReports(
            reports, plan, [&](int i) { return cachedValue(plan, i); }, received);
        expectShown(plan, received, "a register shows what the reply carried");
    }
    const bool storesRecipe = plan.kind == RequestKind::RecipeRead && isKnown && plan.count != 0;
    if (storesRecipe) {
        reports.push_back({ 0, -1, QStringLiteral("RWI"), 4 });
        reports.push_back({ 0, -1, QStringLiteral("RWI"), 5 });
        expect(host.recipe[5] == wordAt(reply, 3), "the first register is the upper half");
    }
    addClosingReports(reports, plan, false);
    expect(host.heard == reports, "exactly the changed registers are reported");
}

void checkWriteAccepted(const FuzzHost &host, const RequestPlan &plan)
{
    if (plan.kind == RequestKind::Write) {
        const auto written = [&](int i) { return (plan.writtenValue + i) & 0xFFFF; };
        expectShown(plan, written, "a confirmed write shows the written value");
    }
    expect(host.heard.empty(), "a confirmed write reports nothing");
}

void checkClosed()
{
    expect(driver.sendFrames.isEmpty(), "no frame is left");
    expect(driver.failCount == 0, "failures are counted from 0 again");
    expect(driver.writeList.isEmpty() && driver.conditionList.isEmpty(), "the request has left");
}

void checkGivenUp(const FuzzHost &host, const RequestPlan &plan)
{
    std::vector<Report> reports;
    if (plan.kind == RequestKind::Write) {
        const auto written = [&](int i) { return (plan.writtenValue + i) & 0xFFFF; };
        const auto cached = [&](int i) { return cachedValue(plan, i); };
        addReports(reports, plan, cached, written);
        addReports(reports, plan, cached, written); // once for the frame, once for the list
    }
    addClosingReports(reports, plan, true);
    expect(host.heard == reports, "a given-up request reports what it takes back");
    if (model::isRegisterType(plan.type))
        expectShown(
            plan, [&](int i) { return cachedValue(plan, i); }, "the device values stay");
    for (int i = 0; i < plan.count; ++i) {
        expect(driver.dataAreas.at(i).flag0 == (isRead(plan) && model::isRegisterType(plan.type)),
               "a read that was given up marks its registers");
    }
    expect(driver.lastFailed == 1, "the failure is noted");
}

void checkTriedAgain(const FuzzHost &host, const RequestPlan &plan, std::size_t digestBefore)
{
    expect(driver.failCount == plan.badRepliesBefore + 1, "the bad reply is counted");
    expect(stateDigest() == digestBefore, "a refused reply changes nothing but the counter");
    expect(host.heard.empty(), "a refused reply reports nothing");
}

// Whether the driver must ask for the frame once more and change nothing but its count.
bool isTriedAgain(const RequestPlan &plan, const QByteArray &reply)
{
    return !isRight(plan, reply) && plan.badRepliesBefore + 1 < plan.retryLimit;
}

void checkClosedBy(const FuzzHost &host, const RequestPlan &plan, const QByteArray &reply,
                   int result)
{
    const bool right = isRight(plan, reply);
    expect(result == (right ? 1 : 2), "accepted with right length and CRC, else given up");
    checkClosed();
    if (!right)
        return checkGivenUp(host, plan);
    expect(driver.lastFailed == 0, "the success is noted");
    isRead(plan) ? checkReadAccepted(host, plan, reply) : checkWriteAccepted(host, plan);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr std::size_t planBytes = 16;
    static FuzzHost host;
    const std::size_t choices = std::min(size, planBytes);
    model::ByteSource source(data, choices);
    const int shape = source.below(4);
    const RequestPlan plan = drawPlan(source, isRare(data, size, 32));
    host.queue(plan);

    FRAME_PRO frame;
    const bool pending = intf_getSendFrame(frame) == 1;
    QString errorText = QStringLiteral("before");
    QByteArray nothing;
    for (int i = 0; i < plan.badRepliesBefore; ++i)
        intf_dealRcvFrame(nothing, errorText);
    QByteArray reply = replyOf(shape, frame, reinterpret_cast<const char *>(data) + choices,
                               static_cast<int>(size - choices));
    const QByteArray given(reply.constData(), reply.size());
    const bool mayChangeNothing = !pending || isTriedAgain(plan, reply);
    const std::size_t digest = mayChangeNothing ? stateDigest() : 0;

    const int result = intf_dealRcvFrame(reply, errorText);

    expect(reply == given, "the reply stays the host's");
    if (!pending) {
        expect(result == 0 && errorText.isEmpty(), "nothing waited for a reply");
        expect(stateDigest() == digest, "a reply that nobody waits for changes nothing");
        return 0;
    }
    expect(errorText == errorLine(plan, static_cast<int>(reply.size())), "the error line is right");
    if (!mayChangeNothing) {
        checkClosedBy(host, plan, reply, result);
        return 0;
    }
    expect(result == 8, "a wrong reply below the limit asks for the frame again");
    checkTriedAgain(host, plan, digest);
    return 0;
}
