#include "Domain/Types/ProgramData.h"

namespace zelmor::domain::types {

ProgramData::ProgramData()
    : ProgramData(0, QString(), 0, QString(), TIME_PROGRAM, false, ChamberTypeData())
{
}

ProgramData::ProgramData(const ProgramId& id, const QString& name, const UserId& userId, const QString& infoText,
                         Type type, bool edited, const ChamberTypeData& chamberType, const QList<ProgramStep>& steps,
                         const QList<ProgramStepRepetition>& repetitions)
    : id(id)
    , name(name)
    , userId(userId)
    , infoText(infoText)
    , type(type)
    , edited(edited)
    , chamberType(chamberType)
    , steps(steps)
    , repetitions(repetitions)
{
}

bool operator==(const ProgramData& left, const ProgramData& right)
{
    return left.id == right.id && left.name == right.name && left.userId == right.userId
           && left.infoText == right.infoText && left.type == right.type && left.edited == right.edited
           && left.chamberType == right.chamberType && left.steps == right.steps
           && left.repetitions == right.repetitions;
}

bool operator!=(const ProgramData& left, const ProgramData& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
