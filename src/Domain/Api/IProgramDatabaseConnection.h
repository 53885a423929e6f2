#pragma once

#include "Domain/Api/ApplicationTableProperties.h"
#include "Domain/Types/DatabaseConnectionError.h"
#include "Domain/Types/ProgramData.h"

#include <QList>
#include <QString>
#include <QUrl>
#include <QVariant>

namespace zelmor::domain::types {
class ChamberTypeId;
class ProgramId;
class ProgramSection;
class ProgramSectionId;
class ProgramStep;
class ProgramStepId;
class ProgramStepRepetition;
class ProgramStepRepetitionId;
class SignalValuePair;
class UserId;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// The time programs: programs, their steps (a section with its set points, or a
// call of another program) and the repetitions over runs of steps; and a
// program with everything it calls as an encrypted file of its own. An id of 0
// means an object not stored yet; adding one puts the new id into the argument.
// Every operation returns its empty value (false, 0, an empty list, a default
// object) on failure and reports it through error().
class IProgramDatabaseConnection
{
public:
    virtual ~IProgramDatabaseConnection();

    // Each with its steps and repetitions.
    virtual QList<zelmor::domain::types::ProgramData> getAllPrograms() const = 0;
    // Equal to the empty ProgramData when the program isn't there.
    virtual zelmor::domain::types::ProgramData getProgram(const zelmor::domain::types::ProgramId& id) const = 0;
    virtual QString getProgramName(const zelmor::domain::types::ProgramId& id) const = 0;
    virtual bool getProgramStateEdited(const zelmor::domain::types::ProgramId& id) const = 0;
    virtual zelmor::domain::types::UserId getProgramUserId(const zelmor::domain::types::ProgramId& id) const = 0;
    virtual zelmor::domain::types::ChamberTypeId
    getProgramChamberTypeId(const zelmor::domain::types::ProgramId& id) const = 0;
    virtual zelmor::domain::types::ProgramData::Type
    getProgramType(const zelmor::domain::types::ProgramId& id) const = 0;

    // Writes the program, every program it calls and the repetitions to a new
    // encrypted file; the program is the file's program 1.
    virtual bool exportProgram(const zelmor::domain::types::ProgramId& id, const QUrl& file) const = 0;
    // Reads a file of exportProgram back as new programs of the user, named
    // after the file; 0, with nothing of the file kept, on failure.
    virtual zelmor::domain::types::ProgramId importProgram(const QUrl& file,
                                                           const zelmor::domain::types::UserId& user) = 0;

    virtual bool addProgram(zelmor::domain::types::ProgramData& program) = 0;
    // The program with its steps, sections, set points and repetitions. A
    // program that another one still calls stays.
    virtual bool deleteProgram(const zelmor::domain::types::ProgramId& id) = 0;
    // The program's own row; steps and repetitions have their own operations.
    virtual bool updateProgram(const zelmor::domain::types::ProgramData& program) = 0;
    virtual bool updateProgramName(const zelmor::domain::types::ProgramId& id, QString name) = 0;
    // 0 when no program has the name.
    virtual zelmor::domain::types::ProgramId findProgramByName(const QString& name) const = 0;
    virtual bool isProgramIdValid(const zelmor::domain::types::ProgramId& id) const = 0;
    virtual bool hasSubPrograms(const zelmor::domain::types::ProgramId& id) const = 0;
    // Whether the program of the repetition's id has a repetition ending at the
    // same step and starting at or after the same step.
    virtual bool
    containsProgramStepRepetitions(const zelmor::domain::types::ProgramStepRepetition& repetition) const = 0;

    // A section step stores its section as a new one, which the step's payload
    // then holds; a step whose payload isn't what its type says is refused.
    virtual bool addProgramStep(zelmor::domain::types::ProgramStep& step) = 0;
    // Updates the steps with an id, adds the others, in list order, and deletes
    // the program's steps that the list doesn't hold: an empty list deletes all.
    virtual bool updateProgramSteps(const zelmor::domain::types::ProgramId& program,
                                    QList<zelmor::domain::types::ProgramStep>& steps) = 0;
    // By order number, each with its section or called program.
    virtual QList<zelmor::domain::types::ProgramStep>
    getProgramSteps(const zelmor::domain::types::ProgramId& program) const = 0;
    virtual bool addProgramStepRepetition(zelmor::domain::types::ProgramStepRepetition& repetition) = 0;
    // As updateProgramSteps; true once every repetition of the list is written.
    virtual bool updateProgramStepRepetitions(const zelmor::domain::types::ProgramId& program,
                                              QList<zelmor::domain::types::ProgramStepRepetition>& repetitions) = 0;
    virtual bool deleteProgramStepRepetition(const zelmor::domain::types::ProgramStepRepetitionId& id) = 0;
    virtual bool updateProgramStepRepetition(const zelmor::domain::types::ProgramStepRepetition& repetition) = 0;
    virtual QList<zelmor::domain::types::ProgramStepRepetition>
    getProgramStepRepetitions(const zelmor::domain::types::ProgramId& program) const = 0;
    // The repetition from one step to another; the two are step ids.
    virtual zelmor::domain::types::ProgramStepRepetition
    getProgramStepRepetition(const zelmor::domain::types::ProgramSectionId& startStep,
                             const zelmor::domain::types::ProgramSectionId& endStep) const = 0;

    // One column of a program; invalid without the program.
    virtual QVariant getProgramProperty(const zelmor::domain::types::ProgramId& id, ProgramProperty property) const = 0;
    virtual bool updateProgramProperty(const zelmor::domain::types::ProgramId& id, ProgramProperty property,
                                       const QVariant& value) = 0;

    // Set points are written in their signal's unit, tolerances as distances in
    // it; a set point of a signal without a known unit is left out.
    virtual bool addSection(zelmor::domain::types::ProgramSection& section) = 0;
    virtual bool updateSection(zelmor::domain::types::ProgramSection& section) = 0;
    // Replaces all set points of the section.
    virtual bool addSetpoints(const zelmor::domain::types::ProgramSectionId& section,
                              const QList<zelmor::domain::types::SignalValuePair>& setpoints) = 0;
    virtual bool updateProgramStep(const zelmor::domain::types::ProgramStep& step) = 0;
    // The step with its section.
    virtual bool deleteProgramStep(const zelmor::domain::types::ProgramStepId& id) = 0;
    virtual bool deleteProgramSteps(const zelmor::domain::types::ProgramId& program) = 0;
    virtual bool deleteUnusedProgramSteps(const zelmor::domain::types::ProgramId& program,
                                          const QList<zelmor::domain::types::ProgramStep>& steps) = 0;
    virtual bool
    deleteUnusedProgramStepRepetitions(const zelmor::domain::types::ProgramId& program,
                                       const QList<zelmor::domain::types::ProgramStepRepetition>& repetitions) = 0;
    // The section with its set points.
    virtual bool deleteProgramSection(const zelmor::domain::types::ProgramSectionId& id) = 0;
    virtual bool deleteProgramSections(const zelmor::domain::types::ProgramId& program) = 0;
    virtual bool deleteProgramSectionSetpoints(const zelmor::domain::types::ProgramSectionId& section) = 0;
    virtual bool deleteProgramSetpoints(const zelmor::domain::types::ProgramId& program) = 0;
    // 0 for a step without a section.
    virtual zelmor::domain::types::ProgramSectionId
    getProgramSectionId(const zelmor::domain::types::ProgramStepId& step) const = 0;
    virtual QVariant getProgramStepPropertyValue(const zelmor::domain::types::ProgramStepId& step,
                                                 ProgramStepProperty property) const = 0;
    // A default section when it isn't there.
    virtual zelmor::domain::types::ProgramSection
    getProgramSection(const zelmor::domain::types::ProgramSectionId& id) const = 0;
    virtual QList<zelmor::domain::types::SignalValuePair>
    getProgramSectionSetpoints(const zelmor::domain::types::ProgramSectionId& section) const = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
