// SPDX-License-Identifier: MIT
// Plays operations out of a byte string on the real driver and on the model, and compares.
#include "operations.h"

#include "arguments.h"
#include "host_edits.h"

#include <algorithm>

namespace model {

namespace {

constexpr std::size_t longestLog = 40;
constexpr int mostAreas = 2500; // the model scans them all, so that time grows with their square

template <typename List> std::string describeList(const List &list)
{
    std::string text;
    for (const auto &element : list)
        text += describe(element) + ' ';
    return text;
}

std::string describeCall(const HeardCall &call)
{
    return std::to_string(call.linkId) + ' ' + std::to_string(call.station) + ' '
        + describe(call.name) + ' ' + std::to_string(call.address) + " saw "
        + call.seen.toHex().toStdString();
}

} // namespace

std::string Outcome::printed(const Item &item)
{
    struct Printer {
        std::string operator()(int number) const { return describe(number); }
        std::string operator()(const std::string &text) const { return text; }
        std::string operator()(const QString &text) const { return describe(text); }
        std::string operator()(const QByteArray &bytes) const
        {
            return bytes.toHex().toStdString();
        }
        std::string operator()(const Blocks &blocks) const { return describeList(blocks.keys); }
        std::string operator()(const Frame &frame) const { return describe(*frame.copy); }
    };
    return std::visit(Printer(), item.value);
}

std::string Outcome::differencesTo(const Outcome &expected) const
{
    std::string text;
    const std::size_t common = std::min(m_items.size(), expected.m_items.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (!(m_items[i].value == expected.m_items[i].value))
            text += std::string("  ") + m_items[i].name + ": driver " + printed(m_items[i])
                + ", model " + printed(expected.m_items[i]) + '\n';
    }
    if (m_items.size() != expected.m_items.size())
        text += "  number of results\n";
    return text;
}

Interpreter::Interpreter(const EntryPoints &entries, const unsigned char *bytes, std::size_t size,
                         Effort effort, Log log)
    : m_source(bytes, size, effort)
    , m_pair(entries)
    , m_logging(log)
{
    m_pair.listen(true);
}

bool Interpreter::play()
{
    while (step()) { }
    return m_report.empty();
}

bool Interpreter::step()
{
    if (m_source.isEmpty() || !m_report.empty())
        return false;
    m_pair.callbackPlan = 0;
    if (m_pair.model.state.dataAreas.size() > mostAreas)
        initProperty();
    else
        playOperation(m_source.below(64));
    return m_report.empty();
}

void Interpreter::log(const std::string &description)
{
    m_log.push_back(std::to_string(m_operations) + ' ' + description);
    if (m_log.size() > longestLog)
        m_log.pop_front();
}

void Interpreter::drawCallbackPlan()
{
    m_pair.callbackPlan =
        m_source.onceIn(2) ? static_cast<unsigned>(m_source.byte()) : 1U; // read only
}

void Interpreter::check(const Outcome &real, const Outcome &expected)
{
    std::string found = real.differencesTo(expected) + callDifferences() + hostDifferences()
        + differences(m_pair.real.state, m_pair.model.state);
    if (found.empty())
        return;
    m_report = "operations, the last one differs:\n";
    for (const std::string &line : m_log)
        m_report += "  " + line + '\n';
    m_report += "callback plan " + std::to_string(m_pair.callbackPlan) + "\ndifferences:\n" + found;
}

std::string Interpreter::callDifferences() const
{
    const std::vector<HeardCall> &real = m_pair.real.heard;
    const std::vector<HeardCall> &expected = m_pair.model.heard;
    const auto alike = [](const HeardCall &a, const HeardCall &b) {
        return a.linkId == b.linkId && a.station == b.station && a.name == b.name
            && a.address == b.address && a.seen == b.seen;
    };
    if (std::equal(real.begin(), real.end(), expected.begin(), expected.end(), alike))
        return {};
    std::string text = "  callbacks of the driver:\n";
    for (const HeardCall &call : real)
        text += "    " + describeCall(call) + '\n';
    text += "  callbacks of the model:\n";
    for (const HeardCall &call : expected)
        text += "    " + describeCall(call) + '\n';
    return text;
}

std::string Interpreter::hostDifferences() const
{
    const RealSide &real = m_pair.real;
    const ModelSide &expected = m_pair.model;
    std::string text;
    if (real.block[60115] != expected.block[60115] || real.block[60116] != expected.block[60116]
        || real.block[60114] != 0 || real.block[0] != 0)
        text += "  host block\n";
    if (real.recipe != expected.recipe)
        text += "  recipe buffer\n";
    if (!real.lockWasFree)
        text += "  the mutex was held during a callback\n";
    if ((real.state.hostBlock != nullptr) != (expected.state.hostBlock != nullptr)
        || (real.state.hostBlock && real.state.hostBlock != real.block.data()))
        text += "  hostBlock\n";
    if ((real.state.hostMutex != nullptr) != (expected.state.hostMutex != nullptr)
        || (real.state.hostMutex && real.state.hostMutex != &real.mutex))
        text += "  hostMutex\n";
    if ((real.state.recipeBuffer != nullptr) != (expected.state.recipeBuffer != nullptr)
        || (real.state.recipeBuffer && real.state.recipeBuffer != real.recipe.data()))
        text += "  recipeBuffer\n";
    return text;
}

void Interpreter::playOperation(int kind)
{
    if (kind < 12)
        return getSendFrame();
    if (kind < 24)
        return reply();
    if (kind < 29)
        return cycles();
    if (kind < 36)
        return setData();
    if (kind < 41)
        return addConditionRead();
    if (kind < 44)
        return getData();
    if (kind < 51)
        return both(editMembers(m_source, m_pair), [](auto &, Outcome &) {});
    switch (kind) {
    case 51:
    case 52:
    case 53:
        return addrMerge();
    case 54:
        return setRcpAddress();
    case 55:
        return raiseRecipeByte();
    case 56:
        return m_source.onceIn(8) ? identity() : initProperty();
    case 57:
        return m_source.onceIn(4) ? registerLists() : initProperty();
    case 58:
    case 59:
        return checkAddresses();
    case 60:
        return multiCopy();
    case 61:
        return holdLists();
    case 62:
        return restoreLists();
    default:
        return m_source.onceIn(6) && m_source.mayCostMuch() ? fillQueue() : setCallback();
    }
}

void Interpreter::initProperty()
{
    const QByteArray text = drawPropertyText(m_source);
    const int absent = m_source.onceIn(6) ? m_source.below(6) : 0;
    both(
        [&] { return "initProperty " + text.toStdString() + ", absent " + std::to_string(absent); },
        [&](auto &side, Outcome &outcome) {
            int result = -5;
            outcome.add("result",
                        side.dx4.initProperty(absent == 1 ? nullptr : side.block.data(), absent,
                                              absent == 2 ? nullptr : side.recipe.data(),
                                              absent == 3 ? nullptr : &result,
                                              absent == 4 ? nullptr : text.constData(),
                                              absent == 5 ? nullptr : &side.mutex));
            outcome.add("*result", result);
        });
}

void Interpreter::identity()
{
    both("identity", [](auto &side, Outcome &outcome) {
        int type = -1;
        side.dx4.getProtocolType(&type);
        side.dx4.getProtocolType(nullptr);
        outcome.add("type", type);
        QString text = QStringLiteral("before");
        side.dx4.getDriverParameter(text);
        outcome.add("parameter", text);
        side.dx4.getDriverPropertyPage(text);
        outcome.add("page", text);
        side.dx4.setDriverPropertyPage(text);
        outcome.add("emptied", text);
    });
}

void Interpreter::setCallback()
{
    const bool on = !m_source.onceIn(4);
    m_pair.listen(on);
    both(on ? "callback on" : "callback off", [](auto &, Outcome &) {});
}

void Interpreter::registerLists()
{
    const int type = m_source.below(3);
    const QString name = drawType(m_source);
    both([&] { return "register lists " + std::to_string(type) + ' ' + describe(name); },
         [&](auto &side, Outcome &outcome) {
             QList<QString> list { QStringLiteral("kept") };
             outcome.add("list", side.dx4.getRegListByType(type, &list));
             outcome.add("description", side.dx4.getRegDiscription(name, &list));
             outcome.add("texts", describeList(list));
         });
}

void Interpreter::checkAddresses()
{
    const QString type = drawType(m_source);
    const QString text = drawAddressText(m_source);
    const int count = m_source.onceIn(2) ? 1
        : m_source.onceIn(8)             ? 2147483647
                                         : drawCount(m_source);
    const int flag = m_source.onceIn(8) ? 0 : 1;
    const int subIndex = m_source.onceIn(8) ? -1 : m_source.below(3);
    const int access = m_source.below(5) - 1;
    both(
        [&] {
            return "check " + describe(type) + ' ' + describe(text) + " count "
                + std::to_string(count) + " flag " + std::to_string(flag) + " sub "
                + std::to_string(subIndex) + " access " + std::to_string(access);
        },
        [&](auto &side, Outcome &outcome) {
            int address = -99;
            outcome.add("validity", side.dx4.checkAddrValidity(type, text, &address, count, flag));
            outcome.add("its address", address);
            outcome.add("check", side.dx4.checkAddr(type, text, &address, subIndex, count, access));
            outcome.add("address", address);
            outcome.add("without address",
                        side.dx4.checkAddr(type, text, nullptr, subIndex, count, access));
        });
}

void Interpreter::multiCopy()
{
    static constexpr int steps[] = { 1, 1, 1, 2, 3, 0, -1, -2, -7, 17, 256, 255, 2147483647 };
    const QString type = drawType(m_source);
    const int start = drawAddress(m_source);
    const int count = drawCount(m_source);
    const int step = m_source.pick(steps);
    const int absent = m_source.onceIn(8) ? m_source.below(3) : 0;
    both(
        [&] {
            return "multiCopy " + describe(type) + ' ' + std::to_string(start) + " count "
                + std::to_string(count) + " step " + std::to_string(step);
        },
        [&](auto &side, Outcome &outcome) {
            QVector<QString> texts { QStringLiteral("kept") };
            QVector<int> addresses { 7 };
            outcome.add("result",
                        side.dx4.multiCopy(type, start, count, step, absent == 1 ? nullptr : &texts,
                                           absent == 2 ? nullptr : &addresses));
            outcome.add("texts", describeList(texts));
            outcome.add("addresses", describeList(addresses));
        });
}

void Interpreter::setRcpAddress()
{
    const QVector<_RCP_VAR_PRO> recipe = drawRecipe(m_source);
    both([&] { return "setRcpAddress " + describeList(recipe); },
         [&](auto &side, Outcome &outcome) {
             outcome.add("result", side.dx4.setRcpAddress(recipe));
         });
}

void Interpreter::addrMerge()
{
    QList<KEY_ADDRESS> keys;
    // Above 16 a sort that is not stable shows itself.
    const int number = m_source.below(m_source.onceIn(4) ? 50 : 14);
    for (int left = number; left > 0; --left)
        keys.append(drawKeyAddress(m_source));
    if (m_source.onceIn(3)) { // neighbours, so that blocks grow
        for (KEY_ADDRESS &key : keys) {
            key.regType = keys.constFirst().regType;
            key.station = 1;
        }
    }
    both([&] { return "addrMerge " + describeList(keys); },
         [&](auto &side, Outcome &outcome) {
             QList<KEY_ADDRESS> given = keys;
             outcome.add("result", side.dx4.addrMerge(given));
             outcome.add("blocks", given);
         });
}

void Interpreter::raiseRecipeByte()
{
    const std::size_t position = m_source.onceIn(2) ? 60115 : 60116;
    const auto value = static_cast<unsigned char>(m_source.below(3));
    both([&] { return "byte " + std::to_string(position) + " := " + std::to_string(value); },
         [&](auto &side, Outcome &) { side.block[position] = value; });
}

void Interpreter::holdLists()
{
    const bool unchanged = !m_snapshot || m_snapshot->isUnchanged();
    m_snapshot = std::make_unique<Snapshot>(m_pair.real.state, m_pair.model.state);
    both("hold copies of the lists", [](auto &, Outcome &) {});
    if (!unchanged)
        m_report += "a held copy of a list was changed by a call\n";
}

void Interpreter::restoreLists()
{
    const int kind = m_source.below(4);
    if (!m_snapshot)
        return holdLists();
    const auto restore = [&](auto &state, const Lists &lists) {
        if (kind == 0)
            state.dataAreas = lists.dataAreas;
        else if (kind == 1)
            state.writeList = lists.writeList;
        else if (kind == 2)
            state.sendFrames = lists.sendFrames;
        else
            state.dataAreas = separate(lists.dataAreas);
    };
    restore(m_pair.real.state, m_snapshot->ofReal);
    restore(m_pair.model.state, m_snapshot->ofModel);
    both([&] { return "put back held list " + std::to_string(kind); }, [](auto &, Outcome &) {});
    if (!m_snapshot->isUnchanged())
        m_report += "a held copy of a list was changed by a call\n";
}

} // namespace model
