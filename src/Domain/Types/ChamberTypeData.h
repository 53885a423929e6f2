#pragma once

#include "Domain/Types/ChamberOption.h"
#include "Domain/Types/ChamberProtocol.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ChamberTypeId.h"
#include "Domain/Types/ControlSignal.h"

#include <QList>
#include <QMap>
#include <QString>

#include <initializer_list>

namespace zelmor::domain::types {

// One chamber type with everything that belongs to it. The predicates are decided
// by fixed option names, protocol numbers, controller names and signal names,
// compared exactly; furtherOptions plays no part in them.
class ChamberTypeData
{
public:
    // Id (0, 0), empty texts, -1 for the numbers, empty containers.
    ChamberTypeData();
    ChamberTypeData(const ChamberTypeId& chamberTypeId, const QString& type, const QString& developementState, int size,
                    const QString& voltage, const QString& image, const QString& description,
                    const QString& firmwareStart, const QString& firmwareEnde, const QString& setupKennung,
                    int setupVersionStart, int setupVersionEnde, const QString& kennungProgramme,
                    const QString& articleNumber, const QString& info, const QString& controller,
                    const QList<ChamberProtocol>& protocols, const QMap<int, ChamberSignal>& chamberSignals,
                    const QMap<int, ControlSignal>& controlSignals, const QList<ChamberOption>& options,
                    const QList<ChamberOption>& furtherOptions);

    // "type size state", leaving out a size below 1 and an empty state; empty
    // whenever type is.
    QString getQualifiedTypeName() const;
    bool requiresModbusAddress() const;
    bool isSerial() const;
    // A time program option; week programs don't count.
    bool isProgrammable() const;
    bool isProgramStartable() const;
    bool isProgramDelayedStartable() const;
    bool hasDataLogger() const;
    // The first "Ctrl_OpMode_Mode" by ascending key, else the placeholder control signal.
    ControlSignal getOperatingModeControlSignal() const;

    ChamberTypeId chamberTypeId;
    QString type; // the model series
    QString developementState;
    int size; // -1 when unknown
    QString voltage;
    QString image;
    QString description;
    QString firmwareStart;
    QString firmwareEnde;
    QString setupKennung;
    int setupVersionStart;
    int setupVersionEnde;
    QString kennungProgramme;
    QString articleNumber;
    QString info;
    QString controller; // the controller family's name
    QList<ChamberProtocol> protocols;
    QMap<int, ChamberSignal> chamberSignals; // by signal id
    QMap<int, ControlSignal> controlSignals; // by control signal id
    QList<ChamberOption> options;
    QList<ChamberOption> furtherOptions; // the catalogue leaves it empty

private:
    bool hasOption(const QString& name) const;
    bool hasAnyProtocol(std::initializer_list<int> numbers) const;
};

// Deliberately blind to setupVersionStart, setupVersionEnde and protocols: types
// that differ only there are equal.
bool operator==(const ChamberTypeData& left, const ChamberTypeData& right);
bool operator!=(const ChamberTypeData& left, const ChamberTypeData& right);

} // namespace zelmor::domain::types
