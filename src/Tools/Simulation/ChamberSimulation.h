#pragma once

#include <QSharedPointer>
#include <QString>

namespace zelmor::domain::types {
class ChamberTypeData;
} // namespace zelmor::domain::types

namespace zelmor::simulation {

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

protected:
    const QSharedPointer<domain::types::ChamberTypeData> chamberType;
    QSharedPointer<SimulationReader> simulationReader;
};

} // namespace zelmor::simulation
