#pragma once

#include "Base/Connection/DatabaseConnection/SqlProgramSections.h"
#include "Base/Connection/DatabaseConnection/SqlProgramStepRepetitions.h"
#include "Base/Connection/DatabaseConnection/SqlProgramSteps.h"
#include "Base/Connection/DatabaseConnection/SqlProgramTransfer.h"
#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Api/IProgramDatabaseConnection.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QObject>

namespace zelmor::domain::api {
class IConfigurationDatabaseConnection;
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

class SqlQuery;

Q_DECLARE_LOGGING_CATEGORY(SQLPROGRAMDATABASECONNECTION)

// Time programs in the tables "program", "program_step", "program_section",
// "program_setpoint" and "program_step_repetition". The chamber type of a
// program and the units of its set points come from the catalogue.
//
// Most operations exist twice: on the store's own connection (the interface),
// and on a connection given by the caller, which export and import use to
// fill and read a program file with the same code. A given form needs the
// catalogue where it reads or writes set points, never the store's own
// connection; export and import need both. Sections and set points are
// written by SqlProgramSections, steps by SqlProgramSteps, repetitions by
// SqlProgramStepRepetitions, files by SqlProgramTransfer, and the tables made
// by SqlProgramTables.
//
// Deleting a program, a step or a section takes everything that belongs to it
// in one transaction, whatever actions the schema's foreign keys have.
// Failures are logged in "zelmor.SqlProgramDatabaseConnection" and emitted
// through error(). Use on the thread of the connection.
class SqlProgramDatabaseConnection : public QObject,
                                     public zelmor::domain::api::IProgramDatabaseConnection,
                                     public zelmor::domain::api::IInitializing
{
    Q_OBJECT

public:
    explicit SqlProgramDatabaseConnection(QObject* parent = nullptr);
    ~SqlProgramDatabaseConnection() override;

    // Neither is owned. True when both are not null.
    virtual bool setDependencies(zelmor::domain::api::ISqlConnection* connection,
                                 zelmor::domain::api::IConfigurationDatabaseConnection* configuration);
    // True when the database has "program", "program_step", "program_section"
    // and "program_setpoint" (MISSING_TABLE at the first that is missing).
    // Creates nothing.
    bool initialize() override;

    QList<zelmor::domain::types::ProgramData> getAllPrograms() const override;
    zelmor::domain::types::ProgramData getProgram(const zelmor::domain::types::ProgramId& id) const override;
    QString getProgramName(const zelmor::domain::types::ProgramId& id) const override;
    bool getProgramStateEdited(const zelmor::domain::types::ProgramId& id) const override;
    zelmor::domain::types::UserId getProgramUserId(const zelmor::domain::types::ProgramId& id) const override;
    zelmor::domain::types::ChamberTypeId
    getProgramChamberTypeId(const zelmor::domain::types::ProgramId& id) const override;
    zelmor::domain::types::ProgramData::Type getProgramType(const zelmor::domain::types::ProgramId& id) const override;
    bool exportProgram(const zelmor::domain::types::ProgramId& id, const QUrl& file) const override;
    zelmor::domain::types::ProgramId importProgram(const QUrl& file,
                                                   const zelmor::domain::types::UserId& user) override;
    bool addProgram(zelmor::domain::types::ProgramData& program) override;
    bool deleteProgram(const zelmor::domain::types::ProgramId& id) override;
    bool updateProgram(const zelmor::domain::types::ProgramData& program) override;
    bool updateProgramName(const zelmor::domain::types::ProgramId& id, QString name) override;
    zelmor::domain::types::ProgramId findProgramByName(const QString& name) const override;
    bool isProgramIdValid(const zelmor::domain::types::ProgramId& id) const override;
    bool hasSubPrograms(const zelmor::domain::types::ProgramId& id) const override;
    bool containsProgramStepRepetitions(const zelmor::domain::types::ProgramStepRepetition& repetition) const override;
    bool addProgramStep(zelmor::domain::types::ProgramStep& step) override;
    bool updateProgramSteps(const zelmor::domain::types::ProgramId& program,
                            QList<zelmor::domain::types::ProgramStep>& steps) override;
    QList<zelmor::domain::types::ProgramStep>
    getProgramSteps(const zelmor::domain::types::ProgramId& program) const override;
    bool addProgramStepRepetition(zelmor::domain::types::ProgramStepRepetition& repetition) override;
    bool updateProgramStepRepetitions(const zelmor::domain::types::ProgramId& program,
                                      QList<zelmor::domain::types::ProgramStepRepetition>& repetitions) override;
    bool deleteProgramStepRepetition(const zelmor::domain::types::ProgramStepRepetitionId& id) override;
    bool updateProgramStepRepetition(const zelmor::domain::types::ProgramStepRepetition& repetition) override;
    QList<zelmor::domain::types::ProgramStepRepetition>
    getProgramStepRepetitions(const zelmor::domain::types::ProgramId& program) const override;
    zelmor::domain::types::ProgramStepRepetition
    getProgramStepRepetition(const zelmor::domain::types::ProgramSectionId& startStep,
                             const zelmor::domain::types::ProgramSectionId& endStep) const override;
    QVariant getProgramProperty(const zelmor::domain::types::ProgramId& id,
                                zelmor::domain::api::ProgramProperty property) const override;
    bool updateProgramProperty(const zelmor::domain::types::ProgramId& id,
                               zelmor::domain::api::ProgramProperty property, const QVariant& value) override;
    bool addSection(zelmor::domain::types::ProgramSection& section) override;
    bool updateSection(zelmor::domain::types::ProgramSection& section) override;
    bool addSetpoints(const zelmor::domain::types::ProgramSectionId& section,
                      const QList<zelmor::domain::types::SignalValuePair>& setpoints) override;
    bool updateProgramStep(const zelmor::domain::types::ProgramStep& step) override;
    bool deleteProgramStep(const zelmor::domain::types::ProgramStepId& id) override;
    bool deleteProgramSteps(const zelmor::domain::types::ProgramId& program) override;
    bool deleteUnusedProgramSteps(const zelmor::domain::types::ProgramId& program,
                                  const QList<zelmor::domain::types::ProgramStep>& steps) override;
    bool
    deleteUnusedProgramStepRepetitions(const zelmor::domain::types::ProgramId& program,
                                       const QList<zelmor::domain::types::ProgramStepRepetition>& repetitions) override;
    bool deleteProgramSection(const zelmor::domain::types::ProgramSectionId& id) override;
    bool deleteProgramSections(const zelmor::domain::types::ProgramId& program) override;
    bool deleteProgramSectionSetpoints(const zelmor::domain::types::ProgramSectionId& section) override;
    bool deleteProgramSetpoints(const zelmor::domain::types::ProgramId& program) override;
    zelmor::domain::types::ProgramSectionId
    getProgramSectionId(const zelmor::domain::types::ProgramStepId& step) const override;
    QVariant getProgramStepPropertyValue(const zelmor::domain::types::ProgramStepId& step,
                                         zelmor::domain::api::ProgramStepProperty property) const override;
    zelmor::domain::types::ProgramSection
    getProgramSection(const zelmor::domain::types::ProgramSectionId& id) const override;
    QList<zelmor::domain::types::SignalValuePair>
    getProgramSectionSetpoints(const zelmor::domain::types::ProgramSectionId& section) const override;

    // Several programs with everything of theirs, as one transaction; a
    // program that a program outside the list calls keeps all of them.
    bool deletePrograms(const QList<zelmor::domain::types::ProgramId>& ids);

    // The forms on a connection given by the caller.
    zelmor::domain::types::ProgramData getProgram(const zelmor::domain::api::ISqlConnection& connection,
                                                  const zelmor::domain::types::ProgramId& id) const;
    // The rows of the query, columnCount columns of "program" in table order,
    // each with its steps and repetitions read from the same connection.
    QList<zelmor::domain::types::ProgramData> getPrograms(const zelmor::domain::api::ISqlConnection& connection,
                                                          const SqlQuery& query, int columnCount) const;
    QList<zelmor::domain::types::ProgramStep> getProgramSteps(const zelmor::domain::api::ISqlConnection& connection,
                                                              const zelmor::domain::types::ProgramId& program) const;
    QList<zelmor::domain::types::ProgramStepRepetition>
    getProgramStepRepetitions(const zelmor::domain::api::ISqlConnection& connection,
                              const zelmor::domain::types::ProgramId& program) const;
    zelmor::domain::types::ProgramSection getProgramSection(const zelmor::domain::api::ISqlConnection& connection,
                                                            const zelmor::domain::types::ProgramSectionId& id) const;
    QList<zelmor::domain::types::SignalValuePair>
    getProgramSectionSetpoints(const zelmor::domain::api::ISqlConnection& connection,
                               const zelmor::domain::types::ProgramSectionId& section) const;
    // Logs "Failed to add program" with the name when the insert fails.
    bool addProgram(zelmor::domain::api::ISqlConnection& connection, zelmor::domain::types::ProgramData& program) const;
    bool addProgramStep(zelmor::domain::api::ISqlConnection& connection,
                        zelmor::domain::types::ProgramStep& step) const;
    bool addProgramStepRepetition(zelmor::domain::api::ISqlConnection& connection,
                                  zelmor::domain::types::ProgramStepRepetition& repetition) const;
    bool addSection(zelmor::domain::api::ISqlConnection& connection,
                    zelmor::domain::types::ProgramSection& section) const;
    bool updateSection(zelmor::domain::api::ISqlConnection& connection,
                       zelmor::domain::types::ProgramSection& section) const;
    bool addSetpoints(zelmor::domain::api::ISqlConnection& connection,
                      const zelmor::domain::types::ProgramSectionId& section,
                      const QList<zelmor::domain::types::SignalValuePair>& setpoints) const;
    bool deletePrograms(zelmor::domain::api::ISqlConnection& connection,
                        const QList<zelmor::domain::types::ProgramId>& ids) const;
    // The store's program into the file's tables; the file's id, or 0.
    zelmor::domain::types::ProgramId exportProgram(zelmor::domain::api::ISqlConnection& file,
                                                   const zelmor::domain::types::ProgramId& id) const;
    // The file's program into the store; the store's id, or 0 with nothing kept.
    zelmor::domain::types::ProgramId importProgram(const zelmor::domain::api::ISqlConnection& file,
                                                   const zelmor::domain::types::ProgramId& id,
                                                   const zelmor::domain::types::UserId& user, const QString& baseName,
                                                   bool isSubProgram);
    // The five program tables, each after those it references, unless there;
    // the application database's as an export file's. They need no catalogue.
    bool createTables(zelmor::domain::api::ISqlConnection& connection) const;
    bool createProgramTable(zelmor::domain::api::ISqlConnection& connection) const;
    bool createProgramSectionTable(zelmor::domain::api::ISqlConnection& connection) const;
    bool createProgramStepTable(zelmor::domain::api::ISqlConnection& connection) const;
    bool createProgramStepRepetitionTable(zelmor::domain::api::ISqlConnection& connection) const;
    bool createProgramSetpointTable(zelmor::domain::api::ISqlConnection& connection) const;

    // Both dependencies are set.
    virtual bool areDependenciesSet() const;
    // The catalogue is set: enough for the forms on a given connection.
    bool isCatalogueSet() const;

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

private:
    zelmor::domain::api::ISqlConnection* connection = nullptr;
    zelmor::domain::api::IConfigurationDatabaseConnection* configuration = nullptr;
    SqlStoreChecks checks;
    SqlStoreChecks catalogueChecks;
    SqlProgramSections sections;
    SqlProgramSteps steps;
    SqlProgramStepRepetitions repetitions;
    SqlProgramTransfer transfer;
};

} // namespace zelmor::base::connection::databaseconnection
