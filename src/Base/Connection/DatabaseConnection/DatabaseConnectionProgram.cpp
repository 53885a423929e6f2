#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlProgramDatabaseConnection.h"
#include "Domain/Types/ChamberTypeId.h"
#include "Domain/Types/ProgramSection.h"
#include "Domain/Types/ProgramSectionId.h"
#include "Domain/Types/ProgramStepRepetitionId.h"
#include "Domain/Types/SignalValuePair.h"

// The program store's interface, passed on call by call.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::ProgramProperty;
using zelmor::domain::api::ProgramStepProperty;

QList<ProgramData> DatabaseConnection::getAllPrograms() const
{
    return programStore->getAllPrograms();
}

ProgramData DatabaseConnection::getProgram(const ProgramId& id) const
{
    return programStore->getProgram(id);
}

QString DatabaseConnection::getProgramName(const ProgramId& id) const
{
    return programStore->getProgramName(id);
}

bool DatabaseConnection::getProgramStateEdited(const ProgramId& id) const
{
    return programStore->getProgramStateEdited(id);
}

UserId DatabaseConnection::getProgramUserId(const ProgramId& id) const
{
    return programStore->getProgramUserId(id);
}

ChamberTypeId DatabaseConnection::getProgramChamberTypeId(const ProgramId& id) const
{
    return programStore->getProgramChamberTypeId(id);
}

ProgramData::Type DatabaseConnection::getProgramType(const ProgramId& id) const
{
    return programStore->getProgramType(id);
}

bool DatabaseConnection::exportProgram(const ProgramId& id, const QUrl& file) const
{
    return programStore->exportProgram(id, file);
}

ProgramId DatabaseConnection::importProgram(const QUrl& file, const UserId& user)
{
    return programStore->importProgram(file, user);
}

bool DatabaseConnection::addProgram(ProgramData& program)
{
    return programStore->addProgram(program);
}

bool DatabaseConnection::deleteProgram(const ProgramId& id)
{
    return programStore->deleteProgram(id);
}

bool DatabaseConnection::updateProgram(const ProgramData& program)
{
    return programStore->updateProgram(program);
}

bool DatabaseConnection::updateProgramName(const ProgramId& id, QString name)
{
    return programStore->updateProgramName(id, name);
}

ProgramId DatabaseConnection::findProgramByName(const QString& name) const
{
    return programStore->findProgramByName(name);
}

bool DatabaseConnection::isProgramIdValid(const ProgramId& id) const
{
    return programStore->isProgramIdValid(id);
}

bool DatabaseConnection::hasSubPrograms(const ProgramId& id) const
{
    return programStore->hasSubPrograms(id);
}

bool DatabaseConnection::containsProgramStepRepetitions(const ProgramStepRepetition& repetition) const
{
    return programStore->containsProgramStepRepetitions(repetition);
}

bool DatabaseConnection::addProgramStep(ProgramStep& step)
{
    return programStore->addProgramStep(step);
}

bool DatabaseConnection::updateProgramSteps(const ProgramId& program, QList<ProgramStep>& steps)
{
    return programStore->updateProgramSteps(program, steps);
}

QList<ProgramStep> DatabaseConnection::getProgramSteps(const ProgramId& program) const
{
    return programStore->getProgramSteps(program);
}

bool DatabaseConnection::addProgramStepRepetition(ProgramStepRepetition& repetition)
{
    return programStore->addProgramStepRepetition(repetition);
}

bool DatabaseConnection::updateProgramStepRepetitions(const ProgramId& program,
                                                      QList<ProgramStepRepetition>& repetitions)
{
    return programStore->updateProgramStepRepetitions(program, repetitions);
}

bool DatabaseConnection::deleteProgramStepRepetition(const ProgramStepRepetitionId& id)
{
    return programStore->deleteProgramStepRepetition(id);
}

bool DatabaseConnection::updateProgramStepRepetition(const ProgramStepRepetition& repetition)
{
    return programStore->updateProgramStepRepetition(repetition);
}

QList<ProgramStepRepetition> DatabaseConnection::getProgramStepRepetitions(const ProgramId& program) const
{
    return programStore->getProgramStepRepetitions(program);
}

ProgramStepRepetition DatabaseConnection::getProgramStepRepetition(const ProgramSectionId& startStep,
                                                                   const ProgramSectionId& endStep) const
{
    return programStore->getProgramStepRepetition(startStep, endStep);
}

QVariant DatabaseConnection::getProgramProperty(const ProgramId& id, ProgramProperty property) const
{
    return programStore->getProgramProperty(id, property);
}

bool DatabaseConnection::updateProgramProperty(const ProgramId& id, ProgramProperty property, const QVariant& value)
{
    return programStore->updateProgramProperty(id, property, value);
}

bool DatabaseConnection::addSection(ProgramSection& section)
{
    return programStore->addSection(section);
}

bool DatabaseConnection::updateSection(ProgramSection& section)
{
    return programStore->updateSection(section);
}

bool DatabaseConnection::addSetpoints(const ProgramSectionId& section, const QList<SignalValuePair>& setpoints)
{
    return programStore->addSetpoints(section, setpoints);
}

bool DatabaseConnection::updateProgramStep(const ProgramStep& step)
{
    return programStore->updateProgramStep(step);
}

bool DatabaseConnection::deleteProgramStep(const ProgramStepId& id)
{
    return programStore->deleteProgramStep(id);
}

bool DatabaseConnection::deleteProgramSteps(const ProgramId& program)
{
    return programStore->deleteProgramSteps(program);
}

bool DatabaseConnection::deleteUnusedProgramSteps(const ProgramId& program, const QList<ProgramStep>& steps)
{
    return programStore->deleteUnusedProgramSteps(program, steps);
}

bool DatabaseConnection::deleteUnusedProgramStepRepetitions(const ProgramId& program,
                                                            const QList<ProgramStepRepetition>& repetitions)
{
    return programStore->deleteUnusedProgramStepRepetitions(program, repetitions);
}

bool DatabaseConnection::deleteProgramSection(const ProgramSectionId& id)
{
    return programStore->deleteProgramSection(id);
}

bool DatabaseConnection::deleteProgramSections(const ProgramId& program)
{
    return programStore->deleteProgramSections(program);
}

bool DatabaseConnection::deleteProgramSectionSetpoints(const ProgramSectionId& section)
{
    return programStore->deleteProgramSectionSetpoints(section);
}

bool DatabaseConnection::deleteProgramSetpoints(const ProgramId& program)
{
    return programStore->deleteProgramSetpoints(program);
}

ProgramSectionId DatabaseConnection::getProgramSectionId(const ProgramStepId& step) const
{
    return programStore->getProgramSectionId(step);
}

QVariant DatabaseConnection::getProgramStepPropertyValue(const ProgramStepId& step, ProgramStepProperty property) const
{
    return programStore->getProgramStepPropertyValue(step, property);
}

ProgramSection DatabaseConnection::getProgramSection(const ProgramSectionId& id) const
{
    return programStore->getProgramSection(id);
}

QList<SignalValuePair> DatabaseConnection::getProgramSectionSetpoints(const ProgramSectionId& section) const
{
    return programStore->getProgramSectionSetpoints(section);
}

} // namespace zelmor::base::connection::databaseconnection
