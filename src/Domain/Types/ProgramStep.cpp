#include "Domain/Types/ProgramStep.h"

#include "Domain/Types/ProgramSection.h"

namespace zelmor::domain::types {

ProgramStep::ProgramStep()
    : ProgramStep(0, 0, 0, INVALID, QVariant())
{
}

ProgramStep::ProgramStep(const ProgramStepId& id, const ProgramId& programId, int orderNumber,
                         const ProgramSection& section)
    : ProgramStep(id, programId, orderNumber, SECTION, QVariant::fromValue(section))
{
}

ProgramStep::ProgramStep(const ProgramStepId& id, const ProgramId& programId, int orderNumber,
                         const ProgramId& subProgramId)
    : ProgramStep(id, programId, orderNumber, SUB_PROGRAM, QVariant::fromValue(subProgramId))
{
}

ProgramStep::ProgramStep(const ProgramStepId& id, const ProgramId& programId, int orderNumber, Type type,
                         const QVariant& payload)
    : id(id)
    , programId(programId)
    , orderNumber(orderNumber)
    , type(type)
    , payload(payload)
{
}

bool ProgramStep::isSection() const
{
    return type == SECTION && payload.canConvert<ProgramSection>();
}

bool ProgramStep::isSubProgram() const
{
    return type == SUB_PROGRAM && payload.canConvert<ProgramId>();
}

ProgramSection ProgramStep::getSection() const
{
    return isSection() ? payload.value<ProgramSection>() : ProgramSection();
}

ProgramId ProgramStep::getSubProgramId() const
{
    return isSubProgram() ? payload.value<ProgramId>() : ProgramId();
}

bool operator==(const ProgramStep& left, const ProgramStep& right)
{
    if (left.id != right.id || left.programId != right.programId || left.orderNumber != right.orderNumber
        || left.type != right.type || left.payload.isValid() != right.payload.isValid()) {
        return false;
    }
    // QVariant can't compare types it doesn't know the comparison of
    if (left.isSection() && right.isSection()) {
        return left.getSection() == right.getSection();
    }
    if (left.isSubProgram() && right.isSubProgram()) {
        return left.getSubProgramId() == right.getSubProgramId();
    }
    return left.payload == right.payload;
}

bool operator!=(const ProgramStep& left, const ProgramStep& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
