#include "Base/Connection/DatabaseConnection/SqlProgramTransfer.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlProgramDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Types/ProgramData.h"
#include "Domain/Types/ProgramId.h"
#include "Domain/Types/ProgramStep.h"
#include "Domain/Types/ProgramStepRepetition.h"
#include "Domain/Types/UserId.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::ISqlConnection;

namespace {

using DC = DatabaseSchema;

// The key of every program file, whoever wrote it.
const QString fileKey = QStringLiteral("0a1b2c3d4e5f60718293a4b5c6d7e8f9");
const QString fileConnectionName = QStringLiteral("exportConnection");

} // namespace

// What one export or import has done so far, over all its levels.
struct SqlProgramTransfer::Copy
{
    // Source id to copy id: a program called twice is copied once.
    QMap<int, int> programs;
    // The programs being copied, the outermost first: meeting one of them
    // again means a program calls itself, which would never end.
    QList<int> path;
    // Import only: every program made, all taken out again when the import fails.
    QList<ProgramId> created;
    UserId user;
    QString baseName;
    const bool* fileFailed = nullptr;
    bool storeFailed = false;
};

SqlProgramTransfer::SqlProgramTransfer(SqlProgramDatabaseConnection& store)
    : store(store)
{
}

bool SqlProgramTransfer::exportProgram(const ProgramId& id, const QUrl& file) const
{
    const QString path = file.toLocalFile();
    const bool existed = QFileInfo::exists(path);
    SqliteConnection connection(fileConnectionName);
    if (!connection.openDatabase(path, QString(), QString(), fileKey)) {
        qCWarning(SQLPROGRAMDATABASECONNECTION).noquote() << "Could not open file" << file.toDisplayString();
        return false;
    }
    if (!connection.emptyDatabase() || !store.createTables(connection)) {
        qCWarning(SQLPROGRAMDATABASECONNECTION) << "Could not create tables";
        connection.closeDatabase();
        if (!existed) {
            QFile::remove(path);
        }
        return false;
    }
    const bool exported = exportProgram(connection, id) != 0;
    connection.closeDatabase();
    // Half a program would import as a whole one.
    if (!exported) {
        QFile::remove(path);
    }
    return exported;
}

ProgramId SqlProgramTransfer::exportProgram(ISqlConnection& file, const ProgramId& id) const
{
    Copy copy;
    return exportProgram(file, id, copy);
}

ProgramId SqlProgramTransfer::importProgram(const QUrl& file, const UserId& user) const
{
    // Opening would make a missing file.
    const QString path = file.toLocalFile();
    if (!QFileInfo(path).isFile()) {
        qCWarning(SQLPROGRAMDATABASECONNECTION).noquote() << "Could not open file" << file.toDisplayString();
        return 0;
    }
    SqliteConnection connection(fileConnectionName);
    bool fileFailed = false;
    QObject::connect(&connection, &SqliteConnection::error, [&fileFailed] { fileFailed = true; });
    if (!connection.openDatabase(path, QString(), QString(), fileKey)) {
        qCWarning(SQLPROGRAMDATABASECONNECTION).noquote() << "Could not open file" << file.toDisplayString();
        return 0;
    }
    // A file with another key or none at all has no tables either.
    const QStringList tables = {DC::lookupProgramTableName(), DC::lookupProgramStepTableName(),
                                DC::lookupProgramStepRepetitionTableName(), DC::lookupProgramSectionTableName(),
                                DC::lookupProgramSetpointTableName()};
    for (const QString& table : tables) {
        if (!connection.containsTable(table)) {
            qCWarning(SQLPROGRAMDATABASECONNECTION).noquote()
                << "No program found" << QStringLiteral("(the file lacks the table '%1')").arg(table);
            connection.closeDatabase();
            return 0;
        }
    }
    const QString baseName = file.fileName().section(QLatin1Char('.'), 0, 0);
    const ProgramId imported = importProgram(connection, 1, user, baseName, false, &fileFailed);
    connection.closeDatabase();
    return imported;
}

ProgramId SqlProgramTransfer::importProgram(const ISqlConnection& file, const ProgramId& id, const UserId& user,
                                            const QString& baseName, bool isSubProgram) const
{
    return importProgram(file, id, user, baseName, isSubProgram, nullptr);
}

ProgramId SqlProgramTransfer::importProgram(const ISqlConnection& file, const ProgramId& id, const UserId& user,
                                            const QString& baseName, bool isSubProgram, const bool* fileFailed) const
{
    Copy copy;
    copy.user = user;
    copy.baseName = baseName;
    copy.fileFailed = fileFailed;
    // The store reports only rows it can't read while reading the file.
    const QMetaObject::Connection watch =
        QObject::connect(&store, &SqlProgramDatabaseConnection::error, [&copy] { copy.storeFailed = true; });
    const ProgramId imported = importProgram(file, id, isSubProgram, copy);
    QObject::disconnect(watch);
    if (imported == 0 && !copy.created.isEmpty() && !store.deletePrograms(copy.created)) {
        qCCritical(SQLPROGRAMDATABASECONNECTION)
            << "Could not remove the" << copy.created.size() << "programs of the failed import";
    }
    return imported;
}

ProgramId SqlProgramTransfer::exportProgram(ISqlConnection& file, const ProgramId& id, Copy& copy) const
{
    if (copy.path.contains(id)) {
        qCWarning(SQLPROGRAMDATABASECONNECTION) << "Program" << int(id) << "calls itself";
        return 0;
    }
    ProgramData program = store.getProgram(id);
    if (program == ProgramData()) {
        qCWarning(SQLPROGRAMDATABASECONNECTION) << "No program found";
        return 0;
    }
    ProgramData exported = program;
    exported.id = 0;
    if (!store.addProgram(file, exported)) {
        qCWarning(SQLPROGRAMDATABASECONNECTION) << "Could not add program";
        return 0;
    }
    copy.path.append(id);
    const bool copied = copySteps(
        program, exported.id, copy, [&](int subProgram) { return int(exportProgram(file, subProgram, copy)); },
        "Could not export subprogram", [&](ProgramStep& step) { return store.addProgramStep(file, step); },
        [&](ProgramStepRepetition& repetition) { return store.addProgramStepRepetition(file, repetition); });
    copy.path.removeLast();
    return copied ? exported.id : ProgramId(0);
}

ProgramId SqlProgramTransfer::importProgram(const ISqlConnection& file, const ProgramId& id, bool isSubProgram,
                                            Copy& copy) const
{
    if (copy.path.contains(id)) {
        qCWarning(SQLPROGRAMDATABASECONNECTION) << "Program" << int(id) << "calls itself";
        return 0;
    }
    ProgramData program = store.getProgram(file, id);
    if (program == ProgramData() || copy.storeFailed || (copy.fileFailed && *copy.fileFailed)) {
        qCWarning(SQLPROGRAMDATABASECONNECTION) << "No program found";
        return 0;
    }
    ProgramData imported = program;
    imported.id = 0;
    imported.userId = copy.user;
    imported.edited = false;
    imported.name = importedName(copy.baseName, isSubProgram);
    if (!store.addProgram(imported)) {
        qCWarning(SQLPROGRAMDATABASECONNECTION) << "Could not add program";
        return 0;
    }
    copy.created.append(imported.id);
    copy.path.append(id);
    const bool copied = copySteps(
        program, imported.id, copy, [&](int subProgram) { return int(importProgram(file, subProgram, true, copy)); },
        "Could not import subprogram", [&](ProgramStep& step) { return store.addProgramStep(step); },
        [&](ProgramStepRepetition& repetition) { return store.addProgramStepRepetition(repetition); });
    copy.path.removeLast();
    return copied ? imported.id : ProgramId(0);
}

bool SqlProgramTransfer::copySteps(const ProgramData& program, const ProgramId& copyId, Copy& copy,
                                   const std::function<int(int)>& copyProgram, const char* copyProgramFailure,
                                   const std::function<bool(ProgramStep&)>& addStep,
                                   const std::function<bool(ProgramStepRepetition&)>& addRepetition) const
{
    QMap<int, int> steps;
    for (ProgramStep step : program.steps) {
        const int sourceStep = step.id;
        step.id = 0;
        step.programId = copyId;
        if (step.isSubProgram()) {
            const int subProgram = step.getSubProgramId();
            int copied = copy.programs.value(subProgram);
            if (copied == 0) {
                copied = copyProgram(subProgram);
                if (copied == 0) {
                    qCWarning(SQLPROGRAMDATABASECONNECTION) << copyProgramFailure;
                    return false;
                }
                copy.programs.insert(subProgram, copied);
            }
            step.payload = QVariant::fromValue(ProgramId(copied));
        }
        if (!addStep(step)) {
            qCWarning(SQLPROGRAMDATABASECONNECTION) << "Could not add program step";
            return false;
        }
        steps.insert(sourceStep, step.id);
    }
    for (ProgramStepRepetition repetition : program.repetitions) {
        repetition.id = 0;
        repetition.programId = copyId;
        repetition.startStepId = steps.value(repetition.startStepId);
        repetition.endStepId = steps.value(repetition.endStepId);
        if (!addRepetition(repetition)) {
            qCWarning(SQLPROGRAMDATABASECONNECTION) << "Could not add program step repetition";
            return false;
        }
    }
    return true;
}

QString SqlProgramTransfer::importedName(const QString& baseName, bool isSubProgram) const
{
    const QString pattern = QStringLiteral("%1_%2%3");
    const QString kind = isSubProgram ? QStringLiteral("subimported") : QStringLiteral("imported");
    QString name = pattern.arg(baseName, kind, QString());
    for (int counter = 1; store.findProgramByName(name) != 0; ++counter) {
        name = pattern.arg(baseName, kind, QString::number(counter));
    }
    return name;
}

} // namespace zelmor::base::connection::databaseconnection
