#pragma once

#include "Domain/Types/DatabaseConnectionError.h"
#include "Domain/Types/SignalId.h"
#include "Domain/Types/Unit.h"

#include <QList>
#include <QMap>
#include <QSharedPointer>

#include <utility>

namespace zelmor::domain::types {
class ChamberSignal;
class ChamberTypeData;
class ChamberTypeId;
class DefaultToleranceRange;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// The read-only chamber type catalogue. Every operation returns its empty value
// (an empty list or map, a null pointer, a default object, 0) on failure and
// reports the failure through error(); an empty result can't be told from a
// failed one otherwise.
class IConfigurationDatabaseConnection
{
public:
    virtual ~IConfigurationDatabaseConnection();

    // One entry per orderable variant. Without signals the entries carry no
    // signals and no control signals: the cheap overview.
    virtual QList<zelmor::domain::types::ChamberTypeData> getAllChamberTypeData(bool withSignals) const = 0;
    // Types with at least one time-programmable signal, without signals.
    virtual QList<zelmor::domain::types::ChamberTypeData> getAllProgrammableChamberTypeData() const = 0;
    // An additional info id of 0 stands for the type's only variant.
    virtual zelmor::domain::types::ChamberTypeData getChamberTypeData(const zelmor::domain::types::ChamberTypeId& id,
                                                                      bool withSignals) const = 0;
    virtual QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(const zelmor::domain::types::ChamberTypeId& id) const = 0;
    // Ordered by the set point number of each signal's manual write register;
    // signals without one are left out.
    virtual QList<std::pair<zelmor::domain::types::ChamberSignal, zelmor::domain::types::DefaultToleranceRange>>
    getTimeProgrammableChamberSignals(const zelmor::domain::types::ChamberTypeId& id) const = 0;
    virtual QMap<int, zelmor::domain::types::ChamberSignal>
    getSetpointChamberSignals(const zelmor::domain::types::ChamberTypeId& id) const = 0;
    virtual QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(QList<zelmor::domain::types::SignalId> ids) const = 0;
    // Null for an unknown id.
    virtual QSharedPointer<zelmor::domain::types::ChamberSignal>
    getChamberSignal(const zelmor::domain::types::SignalId& id) const = 0;
    // For each signal of the destination type, one signal of the source type
    // with the same value type.
    virtual QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ChamberSignal>
    getMatchingSignals(const zelmor::domain::types::ChamberTypeId& source,
                       const zelmor::domain::types::ChamberTypeId& destination) const = 0;
    // In channel order.
    virtual QList<zelmor::domain::types::ChamberSignal>
    getDataloggerChamberSignal(const zelmor::domain::types::ChamberTypeId& id) const = 0;
    virtual zelmor::domain::types::DefaultToleranceRange
    getDefaultToleranceRange(const zelmor::domain::types::ChamberTypeId& id,
                             const zelmor::domain::types::SignalId& signalId, bool isSetPoint) const = 0;
    // In seconds, both delays; 0 when the type has none for the signal.
    virtual int getChamberSignalDelay(const zelmor::domain::types::ChamberTypeId& id,
                                      const zelmor::domain::types::SignalId& signalId, bool second) const = 0;
    virtual zelmor::domain::types::Unit::UnitId getSignalUnitId(const zelmor::domain::types::SignalId& id) const = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
