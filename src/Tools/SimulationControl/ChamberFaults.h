#pragma once

#include "Tools/Simulation/FaultPolicy.h"

#include <QRandomGenerator>

namespace zelmor::simulation::control {

// The faults of one chamber as a test engineer sets them: an added delay for
// every answer, and the shares of requests that are dropped, answered with
// the protocol's error or with stray bytes. One draw per request decides
// among the three, so that each share is exactly the chance of its fault.
class ChamberFaults : public FaultPolicy
{
public:
    struct Settings
    {
        int delayMs = 0;
        double dropRate = 0;
        double errorRate = 0;
        double strayRate = 0;
    };

    static constexpr int maximumDelayMs_ = 600000;
    static constexpr int minimumStrayBytes_ = 4;
    static constexpr int maximumStrayBytes_ = 16;

    explicit ChamberFaults(quint32 seed);

    bool isActive() const override;
    RequestFault nextRequest() override;

    Settings getSettings() const { return settings; }
    // Delay from 0 to maximumDelayMs_, each rate from 0 to 1 and their sum
    // at most 1; anything else is refused with a message and changes nothing.
    bool setSettings(const Settings& settings, QString* error = nullptr);
    void clear();

private:
    Settings settings;
    QRandomGenerator random;
};

} // namespace zelmor::simulation::control
