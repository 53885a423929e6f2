#pragma once

#include <QList>
#include <QSharedPointer>
#include <QVariant>

namespace zelmor::domain::api {
class IConfigurationDatabaseConnection;
class ISqlConnection;
class ISqlQuery;
} // namespace zelmor::domain::api

namespace zelmor::domain::types {
class ProgramId;
class ProgramSection;
class ProgramSectionId;
class SignalValuePair;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {

class SqlQuery;
class SqlStoreChecks;

// The sections of SqlProgramDatabaseConnection and their set points, on
// whichever connection is given. A set point is stored in the unit of its
// signal as the catalogue has it, its tolerances as distances in that unit,
// and read back so: a set point of a digital signal as a bool, any other as a
// float. Rows of the wrong width and warnings go through the store's checks
// and category.
class SqlProgramSections
{
public:
    using Statements = QList<QSharedPointer<zelmor::domain::api::ISqlQuery>>;

    explicit SqlProgramSections(const SqlStoreChecks& checks);

    // The catalogue that gives the signals' units; not owned.
    void setConfiguration(const zelmor::domain::api::IConfigurationDatabaseConnection* configuration);

    // A new section, whatever id it has; the new id goes into the argument. A
    // section whose set points can't be written is taken out again.
    bool addSection(zelmor::domain::api::ISqlConnection& connection,
                    zelmor::domain::types::ProgramSection& section) const;
    // The section's row and all its set points, as one transaction.
    bool updateSection(zelmor::domain::api::ISqlConnection& connection,
                       const zelmor::domain::types::ProgramSection& section) const;
    // Replaces all set points of the section, as one transaction.
    bool addSetpoints(zelmor::domain::api::ISqlConnection& connection,
                      const zelmor::domain::types::ProgramSectionId& section,
                      const QList<zelmor::domain::types::SignalValuePair>& setpoints) const;
    // The section with its set points, as one transaction.
    bool deleteProgramSection(zelmor::domain::api::ISqlConnection& connection,
                              const zelmor::domain::types::ProgramSectionId& id) const;
    // The statements that delete the sections with their set points, the set
    // points first, so that no foreign key holds a section.
    static Statements deleteSections(const QList<QVariant>& ids);
    // The sections of the program's steps, or their set points, found through
    // the steps: a schema whose steps hold their sections refuses the first.
    bool deleteProgramSections(zelmor::domain::api::ISqlConnection& connection,
                               const zelmor::domain::types::ProgramId& program) const;
    bool deleteProgramSetpoints(zelmor::domain::api::ISqlConnection& connection,
                                const zelmor::domain::types::ProgramId& program) const;
    // The sub-select of the sections of the programs' steps.
    static SqlQuery sectionsOfSteps(const QList<QVariant>& programs);
    bool deleteProgramSectionSetpoints(zelmor::domain::api::ISqlConnection& connection,
                                       const zelmor::domain::types::ProgramSectionId& section) const;

    // A default section when it isn't there.
    zelmor::domain::types::ProgramSection getProgramSection(const zelmor::domain::api::ISqlConnection& connection,
                                                            const zelmor::domain::types::ProgramSectionId& id) const;
    // By signal id.
    QList<zelmor::domain::types::SignalValuePair>
    getProgramSectionSetpoints(const zelmor::domain::api::ISqlConnection& connection,
                               const zelmor::domain::types::ProgramSectionId& section) const;

private:
    Statements setpointStatements(const zelmor::domain::types::ProgramSectionId& section,
                                  const QList<zelmor::domain::types::SignalValuePair>& setpoints) const;
    zelmor::domain::types::SignalValuePair parseSetpoint(const QList<QVariant>& values) const;

    const SqlStoreChecks& checks;
    const zelmor::domain::api::IConfigurationDatabaseConnection* configuration = nullptr;
};

} // namespace zelmor::base::connection::databaseconnection
