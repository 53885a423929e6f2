#include "Base/Connection/DatabaseConnection/SqlProgramSections.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlProgramDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/IConfigurationDatabaseConnection.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ProgramId.h"
#include "Domain/Types/ProgramSection.h"
#include "Domain/Types/ProgramSectionId.h"
#include "Domain/Types/SignalValuePair.h"
#include "Domain/Types/ToleranceRange.h"

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::IConfigurationDatabaseConnection;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::ProgramSectionProperty;
using zelmor::domain::api::ProgramSetpointProperty;
using zelmor::domain::api::ProgramStepProperty;

namespace {

using DC = DatabaseSchema;

// Positions in a row of "program_section": its columns in order.
enum SectionColumn {
    SECTION_ID,
    SECTION_DURATION_IN_SECONDS,
    SECTION_TRANSITION_TYPE,
    SECTION_BREAKPOINT,
    SECTION_PROGRAM_EVENT_MESSAGE,
    SECTION_COLUMNS
};

const ProgramSectionProperty sectionLayout[SECTION_COLUMNS] = {
    ProgramSectionProperty::ID,
    ProgramSectionProperty::DURATION_IN_SECONDS,
    ProgramSectionProperty::TRANSITION_TYPE,
    ProgramSectionProperty::BREAKPOINT,
    ProgramSectionProperty::PROGRAM_EVENT_MESSAGE,
};

// Positions in a row of "program_setpoint": its columns in order.
enum SetpointColumn {
    SETPOINT_PROGRAM_SECTION_ID,
    SETPOINT_SIGNAL_ID,
    SETPOINT_SETPOINT,
    SETPOINT_TOLERANCE_RANGE_MIN,
    SETPOINT_TOLERANCE_RANGE_MAX,
    SETPOINT_COLUMNS
};

const ProgramSetpointProperty setpointLayout[SETPOINT_COLUMNS] = {
    ProgramSetpointProperty::PROGRAM_SECTION_ID,
    ProgramSetpointProperty::SIGNAL_ID,
    ProgramSetpointProperty::SETPOINT,
    ProgramSetpointProperty::TOLERANCE_RANGE_MIN,
    ProgramSetpointProperty::TOLERANCE_RANGE_MAX,
};

QString sectionColumn(ProgramSectionProperty property)
{
    return DC::lookupProgramSectionColumnName(property);
}

QString setpointColumn(ProgramSetpointProperty property)
{
    return DC::lookupProgramSetpointColumnName(property);
}

// The columns a section is written with; the id is the database's.
QList<SqlQuery::ColumnValuePair> sectionValues(const ProgramSection& section)
{
    return {
        {sectionColumn(ProgramSectionProperty::DURATION_IN_SECONDS), section.durationInSeconds},
        {sectionColumn(ProgramSectionProperty::TRANSITION_TYPE),
         sqlvalue::orNull(int(section.transitionType), int(ProgramSection::INVALID))},
        {sectionColumn(ProgramSectionProperty::BREAKPOINT), section.breakpoint},
        {sectionColumn(ProgramSectionProperty::PROGRAM_EVENT_MESSAGE), sqlvalue::text(section.event.message)},
    };
}

// A REAL column: NULL for no value.
QVariant real(const QVariant& value)
{
    return value.isValid() ? value : sqlvalue::null<float>();
}

// NULL reads as the empty value.
UnitValue unitValue(const SqlRow& row, int position, Unit::UnitId unit)
{
    return row.isNull(position) ? UnitValue() : UnitValue(unit, row.toFloat(position, 0.0f));
}

QSharedPointer<SqlQuery> deleteSetpointsOf(const QList<QVariant>& sections)
{
    QSharedPointer<SqlQuery> query = QSharedPointer<SqlQuery>::create();
    query->deleteFromTable(DC::lookupProgramSetpointTableName())
        .whereColumn(setpointColumn(ProgramSetpointProperty::PROGRAM_SECTION_ID))
        .inList(sections);
    return query;
}

} // namespace

SqlProgramSections::SqlProgramSections(const SqlStoreChecks& checks)
    : checks(checks)
{
}

void SqlProgramSections::setConfiguration(const IConfigurationDatabaseConnection* configuration)
{
    this->configuration = configuration;
}

bool SqlProgramSections::addSection(ISqlConnection& connection, ProgramSection& section) const
{
    SqlQuery query;
    query.insertTableColumnValuePairs(DC::lookupProgramSectionTableName(), sectionValues(section));
    const ISqlConnection::ExecuteResult result = connection.execute(query);
    if (!result.success) {
        return false;
    }
    section.id = int(result.lastInsertId);
    if (!addSetpoints(connection, section.id, section.setpoints)) {
        deleteProgramSection(connection, section.id);
        section.id = 0;
        return false;
    }
    return true;
}

bool SqlProgramSections::updateSection(ISqlConnection& connection, const ProgramSection& section) const
{
    QSharedPointer<SqlQuery> update = QSharedPointer<SqlQuery>::create();
    update->updateTable(DC::lookupProgramSectionTableName())
        .setColumnValuePairs(sectionValues(section))
        .whereColumn(sectionColumn(ProgramSectionProperty::ID))
        .equals(int(section.id));
    return connection.executeTransaction(Statements{update} + setpointStatements(section.id, section.setpoints));
}

bool SqlProgramSections::addSetpoints(ISqlConnection& connection, const ProgramSectionId& section,
                                      const QList<SignalValuePair>& setpoints) const
{
    return connection.executeTransaction(setpointStatements(section, setpoints));
}

bool SqlProgramSections::deleteProgramSection(ISqlConnection& connection, const ProgramSectionId& id) const
{
    return connection.executeTransaction(deleteSections({int(id)}));
}

bool SqlProgramSections::deleteProgramSectionSetpoints(ISqlConnection& connection,
                                                       const ProgramSectionId& section) const
{
    return connection.execute(*deleteSetpointsOf({int(section)})).success;
}

SqlProgramSections::Statements SqlProgramSections::deleteSections(const QList<QVariant>& ids)
{
    QSharedPointer<SqlQuery> sections = QSharedPointer<SqlQuery>::create();
    sections->deleteFromTable(DC::lookupProgramSectionTableName())
        .whereColumn(sectionColumn(ProgramSectionProperty::ID))
        .inList(ids);
    return {deleteSetpointsOf(ids), sections};
}

bool SqlProgramSections::deleteProgramSections(ISqlConnection& connection, const ProgramId& program) const
{
    SqlQuery query;
    query.deleteFromTable(DC::lookupProgramSectionTableName())
        .whereColumn(sectionColumn(ProgramSectionProperty::ID))
        .inSelectQuery(sectionsOfSteps({int(program)}));
    return connection.execute(query).success;
}

bool SqlProgramSections::deleteProgramSetpoints(ISqlConnection& connection, const ProgramId& program) const
{
    SqlQuery query;
    query.deleteFromTable(DC::lookupProgramSetpointTableName())
        .whereColumn(setpointColumn(ProgramSetpointProperty::PROGRAM_SECTION_ID))
        .inSelectQuery(sectionsOfSteps({int(program)}));
    return connection.execute(query).success;
}

SqlQuery SqlProgramSections::sectionsOfSteps(const QList<QVariant>& programs)
{
    SqlQuery query;
    query.selectColumn(DC::lookupProgramStepColumnName(ProgramStepProperty::SECTION_ID))
        .fromTable(DC::lookupProgramStepTableName())
        .whereColumn(DC::lookupProgramStepColumnName(ProgramStepProperty::PROGRAM_ID))
        .inList(programs);
    return query;
}

ProgramSection SqlProgramSections::getProgramSection(const ISqlConnection& connection, const ProgramSectionId& id) const
{
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(sectionColumn, sectionLayout))
        .fromTable(DC::lookupProgramSectionTableName())
        .whereColumn(sectionColumn(ProgramSectionProperty::ID))
        .equals(int(id));
    const QList<QVariant> values = connection.fetchSingleRow(query);
    if (values.isEmpty() || !checks.hasWidth(values, SECTION_COLUMNS, "getProgramSection")) {
        return ProgramSection();
    }
    const SqlRow row(values);
    const ProgramSectionId sectionId = row.toInt(SECTION_ID, 0);
    return ProgramSection(
        sectionId, getProgramSectionSetpoints(connection, sectionId), row.toInt(SECTION_DURATION_IN_SECONDS, 0),
        ProgramSection::TransitionType(row.toInt(SECTION_TRANSITION_TYPE, ProgramSection::INVALID)),
        row.toBool(SECTION_BREAKPOINT, false), ProgramSectionEvent(row.toString(SECTION_PROGRAM_EVENT_MESSAGE)));
}

QList<SignalValuePair> SqlProgramSections::getProgramSectionSetpoints(const ISqlConnection& connection,
                                                                      const ProgramSectionId& section) const
{
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(setpointColumn, setpointLayout))
        .fromTable(DC::lookupProgramSetpointTableName())
        .whereColumn(setpointColumn(ProgramSetpointProperty::PROGRAM_SECTION_ID))
        .equals(int(section))
        .orderBy(setpointColumn(ProgramSetpointProperty::SIGNAL_ID));

    QList<SignalValuePair> setpoints;
    for (const QList<QVariant>& values : connection.fetch(query)) {
        if (checks.hasWidth(values, SETPOINT_COLUMNS, "getProgramSectionSetpoints")) {
            setpoints.append(parseSetpoint(values));
        }
    }
    return setpoints;
}

SqlProgramSections::Statements SqlProgramSections::setpointStatements(const ProgramSectionId& section,
                                                                      const QList<SignalValuePair>& setpoints) const
{
    Statements statements{deleteSetpointsOf({int(section)})};
    const QStringList columns = SqlRow::columnNames(setpointColumn, setpointLayout);
    for (const SignalValuePair& setpoint : setpoints) {
        const Unit::UnitId unit = configuration->getSignalUnitId(setpoint.signalId);
        if (unit == Unit::UNDEFINED) {
            qCWarning(SQLPROGRAMDATABASECONNECTION) << "Can't write setpoint to database with invalid unit";
            continue;
        }
        // Tolerances are distances from the set point: converted without the units' offset.
        QVariant lower;
        QVariant upper;
        if (setpoint.toleranceRange) {
            lower = setpoint.toleranceRange->lower.getRelativeValue(unit);
            upper = setpoint.toleranceRange->upper.getRelativeValue(unit);
        }
        QSharedPointer<SqlQuery> insert = QSharedPointer<SqlQuery>::create();
        insert->insertTable(DC::lookupProgramSetpointTableName())
            .columns(columns)
            .values({int(section), int(setpoint.signalId), real(setpoint.getValue(unit)), real(lower), real(upper)});
        statements.append(insert);
    }
    return statements;
}

SignalValuePair SqlProgramSections::parseSetpoint(const QList<QVariant>& values) const
{
    const SqlRow row(values);
    const SignalId signalId = row.toInt(SETPOINT_SIGNAL_ID, -1);
    const QSharedPointer<ChamberSignal> signal = configuration->getChamberSignal(signalId);
    // A signal the catalogue doesn't list keeps the unit it was written in.
    const Unit::UnitId unit = signal ? signal->unit : configuration->getSignalUnitId(signalId);

    UnitValue value;
    if (!row.isNull(SETPOINT_SETPOINT)) {
        value = signal && signal->isDigitalSignal() ? UnitValue(unit, row.toBool(SETPOINT_SETPOINT, false))
                                                    : unitValue(row, SETPOINT_SETPOINT, unit);
    }
    QSharedPointer<ToleranceRange> range;
    if (!row.isNull(SETPOINT_TOLERANCE_RANGE_MIN) || !row.isNull(SETPOINT_TOLERANCE_RANGE_MAX)) {
        range = QSharedPointer<ToleranceRange>::create(unitValue(row, SETPOINT_TOLERANCE_RANGE_MIN, unit),
                                                       unitValue(row, SETPOINT_TOLERANCE_RANGE_MAX, unit));
    }
    return SignalValuePair(signalId, value, UnitValue(), range);
}

} // namespace zelmor::base::connection::databaseconnection
