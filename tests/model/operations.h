// SPDX-License-Identifier: MIT
// Plays operations out of a byte string on the real driver and on the model, and compares.
#pragma once

#include "byte_source.h"
#include "pair.h"
#include "snapshot.h"

#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace model {

/// What one side gave back: names and values, in order. Printed only where they differ.
class Outcome {
public:
    template <typename Value> void add(const char *name, Value value)
    {
        m_items.push_back({ name, std::move(value) });
    }
    void add(const char *name, const FRAME_PRO &frame)
    {
        m_items.push_back({ name, Frame { std::make_shared<const FRAME_PRO>(frame) } });
    }
    void add(const char *name, const QList<KEY_ADDRESS> &blocks)
    {
        m_items.push_back({ name, Blocks { blocks } });
    }

    /// One line per item that differs.
    std::string differencesTo(const Outcome &expected) const;

private:
    struct Blocks {
        bool operator==(const Blocks &other) const { return sameList(keys, other.keys); }
        QList<KEY_ADDRESS> keys;
    };

    struct Frame {
        bool operator==(const Frame &other) const { return same(*copy, *other.copy); }
        std::shared_ptr<const FRAME_PRO> copy;
    };

    struct Item {
        const char *name;
        std::variant<int, std::string, QString, QByteArray, Blocks, Frame> value;
    };

    static std::string printed(const Item &item);

    std::vector<Item> m_items;
};

/// Whether operations are described for a report. Without, the play is faster by half; a play that
/// differs is repeated with its log.
enum class Log { None, Kept };

/// Plays one byte string. Starts from a fresh state; after each operation results, callbacks, host
/// memory and all members are compared.
class Interpreter {
public:
    /// @param entries  the real driver; its state is reset now and when the interpreter goes
    /// @param bytes    stay the caller's and must outlive the interpreter
    Interpreter(const EntryPoints &entries, const unsigned char *bytes, std::size_t size,
                Effort effort = Effort::Any, Log log = Log::Kept);

    /// Plays until the bytes are used up or the sides differ.
    /// @return true when no difference was found
    bool play();

    /// Plays one operation. False when the sides differ or no byte is left.
    bool step();

    /// The operations that led to the difference and what differed; empty when none did.
    const std::string &report() const { return m_report; }

    /// Operations played so far.
    long operations() const { return m_operations; }

    /// The two drivers, for tests of the comparison itself.
    Pair &pair() { return m_pair; }

private:
    template <typename Description, typename Action>
    void both(const Description &description, Action action);
    void check(const Outcome &real, const Outcome &expected);
    std::string callDifferences() const;
    std::string hostDifferences() const;
    void log(const std::string &description);
    void log(const char *description) { log(std::string(description)); }
    template <typename Description> void log(const Description &description) { log(description()); }
    void drawCallbackPlan();
    void playOperation(int kind);

    // operations.cpp: the link and the editor's calls
    void initProperty();
    void identity();
    void setCallback();
    void registerLists();
    void checkAddresses();
    void multiCopy();
    void setRcpAddress();
    void addrMerge();
    void raiseRecipeByte();
    void holdLists();
    void restoreLists();

    // line_operations.cpp: requests, replies and values
    void getSendFrame();
    void reply();
    void cycles();
    void addConditionRead();
    void getData();
    void setData();
    void fillQueue();
    void sendFrameOnce(const char *description);
    void handIn(const QByteArray &bytes);

    ByteSource m_source;
    Pair m_pair;
    const Log m_logging;
    std::deque<std::string> m_log;
    std::unique_ptr<Snapshot> m_snapshot;
    std::string m_report;
    long m_operations = 0;
};

/// Applies `action(side, outcome)` to both sides, then compares all there is.
///
/// @param description  a text, or a function that returns one and is called for a log only
template <typename Description, typename Action>
void Interpreter::both(const Description &description, Action action)
{
    ++m_operations;
    if (m_logging == Log::Kept)
        log(description);
    m_pair.each([](auto &side) { side.heard.clear(); });
    Outcome real;
    Outcome expected;
    action(m_pair.real, real);
    action(m_pair.model, expected);
    check(real, expected);
}

} // namespace model
