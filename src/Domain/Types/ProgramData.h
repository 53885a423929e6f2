#pragma once

#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ProgramId.h"
#include "Domain/Types/ProgramStep.h"
#include "Domain/Types/ProgramStepRepetition.h"
#include "Domain/Types/UserId.h"

#include <QList>
#include <QMetaType>
#include <QString>

namespace zelmor::domain::types {

// A time program for one chamber type: a row of table "program" with its steps
// and repetitions.
class ProgramData
{
public:
    // The numbers of column "program_type".
    enum Type : int { TIME_PROGRAM = 0, WEEK_PROGRAM = 1, NORM_PROGRAM = 2 };

    // The empty program: id 0, no name, user 0, a time program, not edited, the
    // empty chamber type, no steps. A program that isn't stored reads back so.
    ProgramData();
    ProgramData(const ProgramId& id, const QString& name, const UserId& userId, const QString& infoText, Type type,
                bool edited, const ChamberTypeData& chamberType, const QList<ProgramStep>& steps = QList<ProgramStep>(),
                const QList<ProgramStepRepetition>& repetitions = QList<ProgramStepRepetition>());

    ProgramId id;
    QString name;
    UserId userId;
    QString infoText;
    Type type;
    bool edited;
    ChamberTypeData chamberType;
    // By order number.
    QList<ProgramStep> steps;
    QList<ProgramStepRepetition> repetitions;
};

bool operator==(const ProgramData& left, const ProgramData& right);
bool operator!=(const ProgramData& left, const ProgramData& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::ProgramData)
