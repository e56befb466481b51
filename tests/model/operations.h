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
#include <vector>

namespace model {

/// What one side gave back: names and printed values, in order.
class Outcome {
public:
    void add(const char *name, std::string value) { m_items.emplace_back(name, std::move(value)); }
    void add(const char *name, int value) { add(name, std::to_string(value)); }
    void add(const char *name, const QString &value) { add(name, describe(value)); }
    void add(const char *name, const QByteArray &bytes) { add(name, bytes.toHex().toStdString()); }

    /// One line per item that differs.
    std::string differencesTo(const Outcome &expected) const;

private:
    std::vector<std::pair<const char *, std::string>> m_items;
};

/// Plays one byte string. Starts from a fresh state; after each operation results, callbacks, host
/// memory and all members are compared.
class Interpreter {
public:
    /// @param entries  the real driver; its state is reset now and when the interpreter goes
    /// @param bytes    stay the caller's and must outlive the interpreter
    Interpreter(const EntryPoints &entries, const unsigned char *bytes, std::size_t size);

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
    template <typename Action> void both(const std::string &description, Action action);
    void check(const Outcome &real, const Outcome &expected);
    std::string callDifferences() const;
    std::string hostDifferences() const;
    void log(const std::string &description);
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
    std::deque<std::string> m_log;
    std::unique_ptr<Snapshot> m_snapshot;
    std::string m_report;
    long m_operations = 0;
};

/// Applies `action(side, outcome)` to both sides, then compares all there is.
template <typename Action> void Interpreter::both(const std::string &description, Action action)
{
    log(description);
    Outcome real;
    Outcome expected;
    action(m_pair.real, real);
    action(m_pair.model, expected);
    check(real, expected);
}

} // namespace model
