// SPDX-License-Identifier: MIT
// A service over a plant, with what it told as text.
#pragma once

#include "host/service/line_service.h"

#include "plant.h"
#include "runtime_fixture.h"

#include <functional>
#include <memory>

/// The service that is tested: on a thread of its own or on the test's event loop, as the program
/// is linked.
std::unique_ptr<dx4::host::LineService> makeService(dx4::host::LineFactory factory,
                                                    const dx4::host::ServiceSettings &settings);

/// Has a test turn its event loop while it waits for the line, where that needs it.
void letTheLineGoOn(Plant &plant);

/// Polls these and nothing else.
dx4::host::ServiceSettings polling(const QVector<dx4::host::PlanEntry> &entries);

/// One service whose signals come to this thread.
class ServiceUnderTest {
public:
    explicit ServiceUnderTest(const dx4::host::ServiceSettings &settings = {});
    ~ServiceUnderTest();

    /// Starts the service; the plant is its thread's from then on.
    void start();

    /// Lets idle times pass on the line's clock instead of waiting for them.
    void playTime();

    /// Takes signals until this is so.
    void waitFor(const std::function<bool()> &isSo) const;

    /// Takes all signals that wait.
    void takeSignals() const;

    int submit(int station, const char *type, int address, const QVector<quint16> &values) const;

    /// Value of a register in the newest snapshot; -1 where nothing is known.
    int shown(int station, const char *type, int address) const;

    std::shared_ptr<Plant> plant;
    dx4::host::ServiceSettings settings;
    std::unique_ptr<dx4::host::LineService> service;

    Texts told; ///< all but values and progress, in order
    std::vector<int> outcomeIds;
    std::vector<dx4::host::WriteOutcome> outcomes;
    std::vector<QVector<dx4::host::RegisterValue>> changes;
    std::vector<dx4::host::StopReport> stops;
    std::vector<dx4::host::AccessResult> reads;
    std::vector<dx4::host::LineCounters> counters;

private:
    void listen();
};
