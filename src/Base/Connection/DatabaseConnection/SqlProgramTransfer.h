#pragma once

#include <QList>
#include <QMap>
#include <QString>

#include <functional>

class QUrl;

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::domain::types {
class ProgramData;
class ProgramId;
class ProgramStep;
class ProgramStepRepetition;
class UserId;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {

class SqlProgramDatabaseConnection;

// Export and import of SqlProgramDatabaseConnection: a program as an encrypted
// file of its own, which holds the five program tables and nothing else, with
// the program, every program it calls (once, however often and wherever it is
// called) and the repetitions, their ids those of the file. The exported
// program is the file's program 1.
//
// An import makes new programs of the importing user, named after the file,
// and undoes all of them when any step of it fails. Warnings go to the store's
// category and end the operation.
class SqlProgramTransfer
{
public:
    explicit SqlProgramTransfer(SqlProgramDatabaseConnection& store);

    // A file that can't be filled completely is removed again.
    bool exportProgram(const zelmor::domain::types::ProgramId& id, const QUrl& file) const;
    // Copies the store's program into the file's tables; the file's new id, or 0.
    zelmor::domain::types::ProgramId exportProgram(zelmor::domain::api::ISqlConnection& file,
                                                   const zelmor::domain::types::ProgramId& id) const;
    // The file's program 1 as "<base>_imported", "<base>_imported1", ..., its
    // sub programs as "<base>_subimported...", the base being the file name up
    // to its first dot. The new program's id, or 0.
    zelmor::domain::types::ProgramId importProgram(const QUrl& file, const zelmor::domain::types::UserId& user) const;
    zelmor::domain::types::ProgramId importProgram(const zelmor::domain::api::ISqlConnection& file,
                                                   const zelmor::domain::types::ProgramId& id,
                                                   const zelmor::domain::types::UserId& user, const QString& baseName,
                                                   bool isSubProgram) const;

private:
    struct Copy;

    zelmor::domain::types::ProgramId importProgram(const zelmor::domain::api::ISqlConnection& file,
                                                   const zelmor::domain::types::ProgramId& id,
                                                   const zelmor::domain::types::UserId& user, const QString& baseName,
                                                   bool isSubProgram, const bool* fileFailed) const;
    zelmor::domain::types::ProgramId exportProgram(zelmor::domain::api::ISqlConnection& file,
                                                   const zelmor::domain::types::ProgramId& id, Copy& copy) const;
    zelmor::domain::types::ProgramId importProgram(const zelmor::domain::api::ISqlConnection& file,
                                                   const zelmor::domain::types::ProgramId& id, bool isSubProgram,
                                                   Copy& copy) const;
    // The steps and repetitions of the program read, each step and repetition
    // pointing at the new program and its steps, each call at the copy of the
    // called program, made through copyProgram when there is none yet.
    bool copySteps(const zelmor::domain::types::ProgramData& program, const zelmor::domain::types::ProgramId& copyId,
                   Copy& copy, const std::function<int(int)>& copyProgram, const char* copyProgramFailure,
                   const std::function<bool(zelmor::domain::types::ProgramStep&)>& addStep,
                   const std::function<bool(zelmor::domain::types::ProgramStepRepetition&)>& addRepetition) const;
    // The first name of the pattern that no program has yet.
    QString importedName(const QString& baseName, bool isSubProgram) const;

    SqlProgramDatabaseConnection& store;
};

} // namespace zelmor::base::connection::databaseconnection
