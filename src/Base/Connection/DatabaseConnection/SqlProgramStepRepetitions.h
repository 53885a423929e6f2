#pragma once

#include <QList>
#include <QString>
#include <QVariant>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::domain::types {
class ProgramId;
class ProgramStepId;
class ProgramStepRepetition;
class ProgramStepRepetitionId;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {

class SqlStoreChecks;

// The repetitions of SqlProgramDatabaseConnection, on whichever connection is
// given: a run of a program's steps, from a start step to an end step, done a
// number of times. Rows of the wrong width go through the store's checks.
class SqlProgramStepRepetitions
{
public:
    explicit SqlProgramStepRepetitions(const SqlStoreChecks& checks);

    // By id.
    QList<zelmor::domain::types::ProgramStepRepetition>
    getProgramStepRepetitions(const zelmor::domain::api::ISqlConnection& connection,
                              const zelmor::domain::types::ProgramId& program) const;
    // A default repetition when there is none.
    zelmor::domain::types::ProgramStepRepetition
    getProgramStepRepetition(const zelmor::domain::api::ISqlConnection& connection,
                             const zelmor::domain::types::ProgramStepId& startStep,
                             const zelmor::domain::types::ProgramStepId& endStep) const;
    bool addProgramStepRepetition(zelmor::domain::api::ISqlConnection& connection,
                                  zelmor::domain::types::ProgramStepRepetition& repetition) const;
    bool updateProgramStepRepetition(zelmor::domain::api::ISqlConnection& connection,
                                     const zelmor::domain::types::ProgramStepRepetition& repetition) const;
    bool deleteProgramStepRepetition(zelmor::domain::api::ISqlConnection& connection,
                                     const zelmor::domain::types::ProgramStepRepetitionId& id) const;
    // Those with an id are updated, the others added, in list order, each
    // belonging to the program afterwards; the first failure gives false. Then
    // the program's repetitions that the list doesn't hold are deleted, which
    // may fail without changing the result.
    bool updateProgramStepRepetitions(zelmor::domain::api::ISqlConnection& connection,
                                      const zelmor::domain::types::ProgramId& program,
                                      QList<zelmor::domain::types::ProgramStepRepetition>& repetitions) const;
    bool
    deleteUnusedProgramStepRepetitions(zelmor::domain::api::ISqlConnection& connection,
                                       const zelmor::domain::types::ProgramId& program,
                                       const QList<zelmor::domain::types::ProgramStepRepetition>& repetitions) const;
    bool containsProgramStepRepetitions(const zelmor::domain::api::ISqlConnection& connection,
                                        const zelmor::domain::types::ProgramStepRepetition& repetition) const;

private:
    QList<zelmor::domain::types::ProgramStepRepetition>
    getRepetitions(const zelmor::domain::api::ISqlConnection& connection, const QString& column, int value,
                   const QString& secondColumn = QString(), int secondValue = 0) const;

    const SqlStoreChecks& checks;
};

} // namespace zelmor::base::connection::databaseconnection
