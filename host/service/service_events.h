// SPDX-License-Identifier: MIT
// What a line tells of itself, none of which may be lost.
#pragma once

#include "host/parameters/parameter_transfer.h"
#include "host/runtime/runtime.h"

#include <variant>

namespace dx4::host {

struct AlarmRaised {
    QString text;
};
struct NoticeGiven {
    QString text;
};
struct LineOpened { };
struct LineWentDown {
    QString reason;
};
struct StationLost {
    int station = 0;
};
struct StationBack {
    int station = 0;
};
struct StopEnded {
    int id = 0;
    StopReport report;
};
struct ReadEnded {
    int id = 0;
    AccessResult result;
};
struct JobWrote {
    WriteOutcome outcome; ///< with the id of the job
};
struct JobProgressed {
    int id = 0;
    int done = 0; ///< registers, of `total`
    int total = 0;
};
struct BackupEnded {
    int id = 0;
    ParameterSet set;
    QString error; ///< why the set is not complete; empty when it is
};
struct RestoreEnded {
    int id = 0;
    RestoreReport report;
};

struct Reloaded {
    QStringList needRestart; ///< see restartKeys()
};
struct CountersTaken {
    int id = 0;
    LineCounters counters;
};

using ServiceEvent = std::variant<WriteOutcome, AlarmRaised, NoticeGiven, LineOpened, LineWentDown,
                                  StationLost, StationBack, StopEnded, ReadEnded, JobProgressed,
                                  JobWrote, BackupEnded, RestoreEnded, Reloaded, CountersTaken>;

} // namespace dx4::host
