#pragma once

#include "Domain/Types/ControlSignalId.h"
#include "Domain/Types/ControllerAddress.h"
#include "Domain/Types/UserLevel.h"

#include <QMultiMap>
#include <QString>

namespace zelmor::domain::types {

// One control bit or word of a controller, as a chamber type lists it.
class ControlSignal
{
public:
    // Meanings that several catalogue spellings stand for.
    enum ControlSignalEnum : int {
        PROGRAM_TIME_REMAINING = 1,
        PROGRAM_TIME_ELAPSED = 2,
        PROGRAM_NUMBER = 3,
        PROGRAM_HALT_SIGNAL = 4,
        PROGRAM_HALT_SIGNAL_TOLERANCE = 5,
        PROGRAM_SECTION_NUMBER = 6
    };

    // The placeholder control signal.
    ControlSignal();
    ControlSignal(ControlSignalId id, const QString& name, int bitPosition, UserLevel userLevel,
                  const ControllerAddress& read, const ControllerAddress& write);

    // Stands for a control signal the type doesn't have: id -1, no name, no bit,
    // user level SUPERUSER, placeholder addresses.
    static ControlSignal placeholder();

    // Accepted names per meaning. Within one key the later spelling comes first.
    // Filled before main; nothing in the simulator reads it.
    static const QMultiMap<ControlSignalEnum, QString> controlSignalMap_;

    ControlSignalId id;
    QString name;
    int bitPosition; // -1 when none
    UserLevel userLevel;
    ControllerAddress read;
    ControllerAddress write;
};

// The user level is deliberately not part of the comparison.
bool operator==(const ControlSignal& left, const ControlSignal& right);
bool operator!=(const ControlSignal& left, const ControlSignal& right);

} // namespace zelmor::domain::types
