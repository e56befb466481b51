// SPDX-License-Identifier: MIT
// One link: a loaded driver with everything that a host must lend it.
#pragma once

#include "host/link/handler_errors.h"
#include "host/link/plugin.h"

#include <QList>
#include <QMutex>
#include <QVector>

#include <functional>
#include <map>
#include <memory>
#include <tuple>
#include <vector>

namespace dx4::host {

/// What the driver is told about its link.
struct LinkSettings {
    int linkNumber = 1; ///< comes back in the driver's callbacks
    bool writesStayLocal = false; ///< writes change the cache only, nothing is sent
    int retryLimit = 3; ///< bad replies after which a request is given up, 1 or more
    int blockSize = 16; ///< most registers of one request, 1 to 123

    /// The text for intf_initProperty.
    QByteArray propertyText() const;
};

/// One call of the driver's callback.
struct ValueChange {
    int linkNumber = 0; ///< 0 for "RWI", -1 for "-1"
    int station = 0; ///< -1 for "RWI" and "-1"
    QString name; ///< register type; "RWI" recipe value; "-1" outcome of a condition read
    int address = 0; ///< internal address; unit with "RWI"; 0 or -1 with "-1"
};

/// What the cache knows of one register.
struct RegisterState {
    quint16 value = 0; ///< visible value: the written one while its write is pending
    bool failed = false; ///< the last read of it was given up
    bool writePending = false;
};

/// Owns a loaded driver, the memory that it borrows, and the way back from its callback.
///
/// All calls come from one thread. The recipe request bytes of the shared block are never raised:
/// while one is set the driver repeats its current request, and writes and reads wait.
class Link {
public:
    using ChangeHandler = std::function<void(const ValueChange &)>;

    /// Takes the driver over and starts the link: all lists and the cache are empty afterwards.
    ///
    /// @param plugin  not null: std::invalid_argument is thrown for one that could not be loaded
    Link(std::unique_ptr<Plugin> plugin, const LinkSettings &settings);

    /// Ends the driver's callback, then unloads the driver.
    ~Link();
    Link(const Link &) = delete;
    Link &operator=(const Link &) = delete;

    const LinkSettings &settings() const { return m_settings; }
    const DriverApi &api() const { return m_plugin->api(); }

    /// Called for every change that the driver reports, before the driver's call returns. It may
    /// read values, write and ask for condition reads through this link.
    ///
    /// What it throws does not pass through the driver. The first exception leaves from the call of
    /// this link that led to the report, once the driver has done with it: from handReply(), poll()
    /// or write(), or from the call of a Cycle, WriteDesk or Runtime around them.
    void onChange(ChangeHandler handler) { m_handler = std::move(handler); }

    /// Replaces the cyclic reads by these blocks, each as it stands and in this order; not while a
    /// request is in flight.
    ///
    /// The driver's own merging joins what touches in its order, also registers of two stations. It
    /// makes the records and marks of the registers; then its list of cyclic reads is set.
    void poll(const QList<KEY_ADDRESS> &blocks);

    /// Gives the next frame to send.
    ///
    /// @return false when there is nothing to send
    bool nextFrame(FRAME_PRO &frame);

    /// Hands the bytes that answered the last frame to the driver; empty when none came.
    ///
    /// @param errorText  out: the driver's line about the request; may be null
    ReplyResult handReply(const QByteArray &bytes, QString *errorText = nullptr);

    /// Visible values of `count` registers; what was never read is 0.
    QVector<quint16> values(int station, const QString &regType, int address, int count = 1);

    /// State of one register, without creating a record for one that was never read.
    RegisterState registerState(int station, const QString &regType, int address) const;

    /// Shows the values at once and queues their write.
    ///
    /// @param tag  travels with the request as VARIABLE::varKind
    void write(int station, const QString &regType, int address, const QVector<quint16> &values,
               int tag = 0);

    /// Queues a one-off read; its outcome arrives as a change named "-1".
    void addConditionRead(int station, const QString &regType, int address, int count, int tag = 0);

    /// Has the driver give up every write that waits, without the line: it lets go of them no other
    /// way. The request in progress and polled blocks whose turn comes between fail too.
    void failWrites();

    /// The same for all that the driver would send before a write of this tag that waits; that
    /// write is what nextFrame() gives then.
    void failAhead(int tag);

    /// Requests that wait in the driver: writes and condition reads.
    int waitingWrites() const;
    int waitingConditionReads() const;

    /// Whether a write handed over now would be what nextFrame() gives: no request is in progress,
    /// no other write waits, and it is not the turn of a polled block. A write that the driver
    /// keeps waiting could be overtaken and cannot be taken back.
    bool sendsWriteNext() const;

    /// Whether a request of this tag waits. It leaves without a word when a newer one of the same
    /// registers takes its place, and a condition read also with another one that failed.
    bool hasWrite(int tag) const;
    bool hasConditionRead(int tag) const;

    /// Shared by all that call handlers on this link's account.
    HandlerErrors &handlerErrors() { return m_errors; }

private:
    class Scope;
    using RegisterKey = std::tuple<int, int, QString>; // station, address, type
    const _DATA_ *findRecord(int station, const QString &regType, int address) const;
    void notePlaces() const;
    int triesToFailWrites() const;
    static void dispatch(int linkNumber, int station, QString &name, int address);

    std::unique_ptr<Plugin> m_plugin;
    LinkSettings m_settings;
    std::vector<unsigned char> m_sharedBlock;
    std::vector<unsigned short> m_recipeBuffer;
    QMutex m_mutex;
    mutable std::map<RegisterKey, int> m_places; // where a register's record was last seen
    mutable int m_placed = 0; // records whose places are known
    ChangeHandler m_handler;
    HandlerErrors m_errors;
};

/// An address record for Link::poll.
KEY_ADDRESS wanted(int station, const QString &regType, int address, int count = 1);

} // namespace dx4::host
