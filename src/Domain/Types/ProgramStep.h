#pragma once

#include "Domain/Types/ProgramId.h"
#include "Domain/Types/ProgramStepId.h"

#include <QMetaType>
#include <QVariant>

namespace zelmor::domain::types {

class ProgramSection;

// One step of a program: a section, or a call of another program. The payload
// is a QVariant holding a ProgramSection for SECTION and a ProgramId for
// SUB_PROGRAM, as the program store reads and writes it.
class ProgramStep
{
public:
    // The numbers of column "step_type".
    enum Type : int { INVALID = 0, SECTION = 1, SUB_PROGRAM = 2 };

    // Id 0, program 0, order 0, INVALID with no payload.
    ProgramStep();
    ProgramStep(const ProgramStepId& id, const ProgramId& programId, int orderNumber, const ProgramSection& section);
    ProgramStep(const ProgramStepId& id, const ProgramId& programId, int orderNumber, const ProgramId& subProgramId);
    ProgramStep(const ProgramStepId& id, const ProgramId& programId, int orderNumber, Type type,
                const QVariant& payload);

    bool isSection() const;
    bool isSubProgram() const;
    // The payload as what the type says; a default section, or program 0, when it
    // isn't one.
    ProgramSection getSection() const;
    ProgramId getSubProgramId() const;

    ProgramStepId id;
    ProgramId programId;
    int orderNumber;
    Type type;
    QVariant payload;
};

bool operator==(const ProgramStep& left, const ProgramStep& right);
bool operator!=(const ProgramStep& left, const ProgramStep& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::ProgramStep)
