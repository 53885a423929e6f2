#pragma once

#include "Tools/Simulation/ChamberStatistics.h"
#include "Tools/Simulation/RequestFault.h"

#include <QSharedPointer>
#include <QString>

namespace zelmor::domain::types {
class ChamberTypeData;
} // namespace zelmor::domain::types

namespace zelmor::simulation {

class FaultPolicy;
class SimulationReader;

// The abstract chamber: a chamber type and the one reader behind every
// protocol request. Protocol servers derive from it (beside QObject or a
// Modbus server) and always reach the reader through `simulationReader`,
// never through a pointer of their own, since `setSimulationReader` may
// replace and release it.
class ChamberSimulation
{
public:
    // Shares the type with the caller; the reader stays null.
    explicit ChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType);
    virtual ~ChamberSimulation();

    ChamberSimulation(const ChamberSimulation&) = delete;
    ChamberSimulation& operator=(const ChamberSimulation&) = delete;

    // May be called twice; a second call must not harm the first.
    virtual bool start() = 0;
    // 1 Modbus serial, 2 Modbus RTU over TCP, 3 Modbus TCP, 4 TLX.
    virtual int getProtocolId() const = 0;
    virtual QString getIpAddress() const;
    virtual int getModbusAddress() const;

    // Replaces the former reader as a whole; there is no fallback to it.
    void setSimulationReader(QSharedPointer<SimulationReader> reader);
    QSharedPointer<SimulationReader> getSimulationReader() const;
    QSharedPointer<domain::types::ChamberTypeData> getChamberType() const;

    // Hooks for a control interface. A chamber that nobody controls is
    // online, has no fault policy and only counts.

    // Offline, a chamber neither listens nor answers, nor does its own
    // responder; online restores the service it had. False when the chamber
    // can't be taken offline, or can't listen again.
    virtual bool setOnline(bool online);
    bool isOnline() const;
    // The TCP port it serves on; 0 for none.
    virtual int getPort() const;
    // Clients connected now (for a tunnelled chamber, those of its converter).
    virtual int getClientCount() const;
    // Whether the chamber asks a fault policy at all.
    virtual bool acceptsFaults() const;
    void setFaultPolicy(QSharedPointer<FaultPolicy> policy);
    QSharedPointer<FaultPolicy> getFaultPolicy() const;
    const ChamberStatistics& getStatistics() const;

protected:
    // The fault for a request that just arrived, counted; none without a policy.
    RequestFault nextFault();

    const QSharedPointer<domain::types::ChamberTypeData> chamberType;
    QSharedPointer<SimulationReader> simulationReader;
    ChamberStatistics statistics;
    bool online = true;

private:
    QSharedPointer<FaultPolicy> faultPolicy;
};

} // namespace zelmor::simulation
