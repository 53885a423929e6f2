#pragma once

#include <QString>

namespace zelmor::domain::types {

// What raised an alarm. The texts are German source texts of the translation
// context "AlarmType".
class AlarmType
{
public:
    // 1 and 5 share their text.
    enum TypeId : int {
        NOT_DEFINED = 0,
        TOLERANCE_RANGE_VIOLATION = 1,
        PROGRAM_EVENT = 2,
        CONNECTION_ALARM = 3,
        COLLECTIVE_ALARM = 4,
        TOLERANCE_RANGE_VIOLATION_2 = 5,
        SIREN_DESK_ALARM = 6,
        SIREN_BOX_CONNECTION_ALARM = 7,
        SIREN_BOX_PLAUSIBILITY_ALARM = 8
    };

    AlarmType(TypeId typeId = NOT_DEFINED);

    // The source text; the empty text for a number without one.
    QString toUntranslatedString() const;
    QString toString() const;

    TypeId typeId;
};

bool operator==(const AlarmType& left, const AlarmType& right);
bool operator!=(const AlarmType& left, const AlarmType& right);

} // namespace zelmor::domain::types
