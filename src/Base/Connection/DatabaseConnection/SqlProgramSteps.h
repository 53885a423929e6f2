#pragma once

#include "Domain/Api/ApplicationTableProperties.h"

#include <QList>
#include <QVariant>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::domain::types {
class ProgramId;
class ProgramStep;
class ProgramStepId;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {

class SqlProgramSections;
class SqlStoreChecks;

// The steps of SqlProgramDatabaseConnection, on whichever connection is given. A step row has exactly one of "section_id" and
// "sub_program_id"; its type says which, and a step whose payload isn't what
// its type says is refused before anything is written. Rows of the wrong
// width go through the store's checks.
class SqlProgramSteps
{
public:
    SqlProgramSteps(const SqlStoreChecks& checks, const SqlProgramSections& sections);

    // By order number, each with its section or called program.
    QList<zelmor::domain::types::ProgramStep> getProgramSteps(const zelmor::domain::api::ISqlConnection& connection,
                                                              const zelmor::domain::types::ProgramId& program) const;
    // A section step stores its section as a new one, which the step's payload
    // then holds; a step that can't be inserted takes that section out again.
    bool addProgramStep(zelmor::domain::api::ISqlConnection& connection,
                        zelmor::domain::types::ProgramStep& step) const;
    // A section without an id is added, and the step's payload then holds it;
    // one with an id is updated. A section that the step held before and
    // holds no longer is deleted.
    bool updateProgramStep(zelmor::domain::api::ISqlConnection& connection,
                           zelmor::domain::types::ProgramStep& step) const;
    // The step and its section with the set points, as one transaction.
    bool deleteProgramStep(zelmor::domain::api::ISqlConnection& connection,
                           const zelmor::domain::types::ProgramStepId& id) const;
    // One column of a step; invalid without the step.
    QVariant getProgramStepPropertyValue(const zelmor::domain::api::ISqlConnection& connection,
                                         const zelmor::domain::types::ProgramStepId& step,
                                         zelmor::domain::api::ProgramStepProperty property) const;

    // The program's steps with an id are updated, the others added, in list
    // order, each belonging to the program afterwards; then the steps that the
    // list doesn't hold are deleted. The first failure ends it.
    bool updateProgramSteps(zelmor::domain::api::ISqlConnection& connection,
                            const zelmor::domain::types::ProgramId& program,
                            QList<zelmor::domain::types::ProgramStep>& steps) const;
    bool deleteUnusedProgramSteps(zelmor::domain::api::ISqlConnection& connection,
                                  const zelmor::domain::types::ProgramId& program,
                                  const QList<zelmor::domain::types::ProgramStep>& steps) const;
    // The rows only.
    bool deleteProgramSteps(zelmor::domain::api::ISqlConnection& connection,
                            const zelmor::domain::types::ProgramId& program) const;
    bool hasSubPrograms(const zelmor::domain::api::ISqlConnection& connection,
                        const zelmor::domain::types::ProgramId& program) const;

private:
    const SqlStoreChecks& checks;
    const SqlProgramSections& sections;
};

} // namespace zelmor::base::connection::databaseconnection
