// SPDX-License-Identifier: MIT
// The whole driver once more, as literal and slow as it can be, to compare the real one with.
//
// Nothing is cached, every lookup is a scan from the front and every table is written out again
// here. It shares no code with the driver, only the record types of the boundary.
#pragma once

#include "host_records.h"

#include <QByteArray>
#include <QList>
#include <QMutex>
#include <QString>
#include <QVector>

#include <functional>

namespace model {

/// One driver with all its state; members and entry points are named as those of the real one.
///
/// Arguments, results and side effects are those that driver_api.h documents.
class DriverModel {
public:
    using Callback = std::function<void(int linkId, int station, QString &name, int address)>;

    DriverModel();

    // Identity and settings.
    void getProtocolType(int *type) const;
    void getDriverParameter(QString &text) const;
    void getDriverPropertyPage(QString &text) const;
    void setDriverPropertyPage(QString &text) const;
    void setAddrValueChangeCallBack(Callback callback);
    int initProperty(unsigned char *block, int param, unsigned short *recipe, int *result,
                     const char *propertyText, QMutex *mutex);

    // Register catalogue.
    int getRegListByType(int type, QList<QString> *list) const;
    int getRegDiscription(const QString &regType, QList<QString> *list) const;
    int checkAddrValidity(const QString &regType, const QString &addrText, int *address, int count,
                          int typeFlag) const;
    int checkAddr(const QString &regType, const QString &addrText, int *address, int subIndex,
                  int count, int accessMode) const;
    int multiCopy(const QString &regType, int startAddress, int count, int step,
                  QVector<QString> *texts, QVector<int> *addresses) const;

    // Configuration of a link.
    int setRcpAddress(const QVector<_RCP_VAR_PRO> &rcpList);
    int addrMerge(QList<KEY_ADDRESS> &addresses);

    // The cycle.
    int getSendFrame(FRAME_PRO &out);
    int addConditionRead(const KEY_ADDRESS &address, int varKind);
    int dealRcvFrame(QByteArray &reply, QString &errorText);

    // Values.
    int getData(int station, const QString &regType, int address, int count, unsigned char *out);
    int setData(int station, const QString &regType, int address, int count, unsigned char *data,
                int varKind);

    // State, member by member as in class korvane_dx4.
    Callback valueChangeCallback;
    int linkId = 0;
    int writesLocalOnly = 0;
    int property2 = 0;
    int retryLimit = 0;
    int blockSize = 0;
    unsigned char *hostBlock = nullptr;
    int hostParam = 0;
    unsigned short *recipeBuffer = nullptr;
    QMutex *hostMutex = nullptr;
    QList<VARIABLE> readList;
    QList<VARIABLE> writeList;
    QList<VARIABLE> conditionList;
    QList<_DATA_> dataAreas;
    QVector<_RCP_VAR_PRO> rcpVars;
    QVector<_RCP_VAR_PRO> rcpSendVars;
    QList<int> mergeIndexList;
    QList<QString> regTypeList;
    VARIABLE conditionVar;
    VARIABLE curVar;
    int phase = 0;
    int tryCount = 0;
    int spare1 = 0;
    int failCount = 0;
    int bitBlockSize = 0;
    int writeBlockSize = 0;
    int lastFailed = 0;
    int spare2 = 0;
    int spare3 = 0;
    QList<FRAME_PRO> sendFrames;
    int rcpIndex = 0;

private:
    enum class Outcome { Failed, Succeeded };

    // driver_model_setup.cpp
    unsigned weight(const KEY_ADDRESS &key) const;
    QList<KEY_ADDRESS> mergePass(const QList<KEY_ADDRESS> &sorted) const;

    // driver_model_frames.cpp
    void appendReadFrame(const VARIABLE &var);
    void appendWriteFrame(const VARIABLE &var);

    // driver_model_cycle.cpp
    bool recipeRequested(int flagPosition);
    void clearRecipeRequest(int flagPosition);
    void fillFromRecipe(bool withValues);
    void serveNext();
    void serveRecipe(int recipePhase);
    void serveAgain();

    // driver_model_reply.cpp
    int checkReply(const QByteArray &reply) const;
    void storeReply(const QByteArray &reply);
    void storeRecipe(const QByteArray &reply, const FRAME_PRO &head);
    int acceptHead();
    int rejectReply();
    void closeRequest();
    void closeWrite();
    void closeConditionRead();
    void closeRecipe(int flagPosition);

    // driver_model_values.cpp
    int areaOf(int station, const QString &regType, int address);
    void monitor(int station, const QString &regType, int address, int count);
    void notify(int link, int station, const QString &name, int address);
    void reportChange(int before, int after, int station, const QString &regType, int address);
    void showWritten(int station, const QString &regType, int address, int count,
                     const unsigned char *data);
    void settle(int station, const QString &regType, int address, int count, Outcome outcome);
};

/// Modbus CRC of `length` bytes, computed bit by bit.
int crcOf(const unsigned char *bytes, int length);

/// True for the six names, case-sensitively.
bool isRegisterType(const QString &regType);

/// Puts `var` into a queue of at most 513: over an equal request behind the head, else at the end,
/// else over the last.
void queueRequest(QList<VARIABLE> &list, const VARIABLE &var);

/// Same station, type, address and count.
bool sameRequest(const VARIABLE &a, const VARIABLE &b);

} // namespace model
