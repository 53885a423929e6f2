#include "Tools/DatabaseTool/AddChambersCommand.h"

#include "Tools/DatabaseTool/ExtractReader.h"
#include "Tools/DatabaseTool/ScratchFile.h"
#include "Tools/DatabaseTool/ToolContext.h"
#include "Tools/DatabaseTool/ToolDatabase.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QSqlDatabase>
#include <QStandardPaths>
#include <QTextStream>

namespace zelmor::tools::databasetool {

using zelmor::domain::types::ChamberData;

namespace {

// A chamber is one address and one slave, as the delivered schema's unique
// key says; a chamber without a network address is known by its port.
QString chamberKey(const ChamberData& chamber)
{
    const QString address =
        chamber.ipAddress.isNull() ? QStringLiteral("port ") + chamber.comPort : chamber.ipAddress.toString();
    return address + QLatin1Char('/') + QString::number(chamber.modbusAddress);
}

// The rows not yet in the database; the others are counted.
QList<ExtractReader::Row> newRows(ToolDatabase& database, const QList<ExtractReader::Row>& rows, int* present)
{
    QSet<QString> known;
    for (const ChamberData& chamber : database.facade().getAllChamberData(false))
        known.insert(chamberKey(chamber));
    QList<ExtractReader::Row> fresh;
    *present = 0;
    for (const ExtractReader::Row& row : rows) {
        const QString key = chamberKey(row.chamber);
        if (known.contains(key)) {
            ++*present;
            continue;
        }
        known.insert(key);
        fresh.append(row);
    }
    return fresh;
}

CommandOutcome readFailure(const QString& file)
{
    return CommandOutcome::failure(COMMAND_FAILED, file + QStringLiteral(": the chambers can't be read"));
}

CommandOutcome addAll(ToolDatabase& database, const QList<ExtractReader::Row>& rows, const QString& file)
{
    QSqlDatabase connection = database.file().connection().getDatabase();
    // Only for speed: the working copy is dropped whole on any failure.
    connection.transaction();
    for (const ExtractReader::Row& row : rows) {
        ChamberData chamber = row.chamber;
        if (!database.facade().addChamber(chamber) || database.hasErrors()) {
            connection.rollback();
            return CommandOutcome::failure(COMMAND_FAILED,
                                           file
                                               + QStringLiteral(": the chamber of line %1 (\"%2\") can't be added; "
                                                                "nothing of this run is written")
                                                     .arg(row.lineNumber)
                                                     .arg(chamber.chamberName));
        }
    }
    if (!connection.commit())
        return CommandOutcome::failure(COMMAND_FAILED, file + QStringLiteral(": the chambers can't be written"));
    return CommandOutcome::success();
}

} // namespace

QString AddChambersCommand::defaultExtract()
{
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + QStringLiteral("/sqlextract.sql");
}

CommandOutcome AddChambersCommand::run(const ToolContext& context)
{
    const QString file = context.file();
    const QString extract = context.line.argument(QStringLiteral("EXTRACT")).isEmpty()
                                ? defaultExtract()
                                : context.line.argument(QStringLiteral("EXTRACT"));
    QFile extractFile(extract);
    // The simulator doesn't make the folder: without it the extract goes nowhere, without a word.
    if (!extractFile.exists() && !QFileInfo(extract).dir().exists())
        return CommandOutcome::failure(CANNOT_OPEN, extract
                                                        + QStringLiteral(": no such file, nor its folder; "
                                                                         "chamber-simulator writes it only into a "
                                                                         "folder that is there"));
    if (!extractFile.exists())
        return CommandOutcome::failure(CANNOT_OPEN, extract
                                                        + QStringLiteral(": no such file (chamber-simulator writes "
                                                                         "it for a fleet built with -n or -a)"));
    if (!extractFile.open(QIODevice::ReadOnly))
        return CommandOutcome::failure(CANNOT_OPEN,
                                       extract + QStringLiteral(": can't be read (%1)").arg(extractFile.errorString()));
    ExtractReader reader;
    if (!reader.read(QString::fromUtf8(extractFile.readAll())))
        return CommandOutcome::failure(BAD_INPUT, extract
                                                      + QStringLiteral(": line %1: %2; nothing is written to %3")
                                                            .arg(reader.errorLine())
                                                            .arg(reader.errorText(), file));

    ToolDatabase database(context.key(), context.line.value(QStringLiteral("--catalogue")));
    CommandOutcome outcome = database.open(file, file, DatabaseFile::READ_ONLY, ToolDatabase::WITHOUT_CATALOGUE);
    if (!outcome.isSuccess())
        return outcome;
    int present = 0;
    QList<ExtractReader::Row> rows = newRows(database, reader.rows(), &present);
    if (database.hasErrors())
        return readFailure(file);
    database.close();

    if (!rows.isEmpty()) {
        ScratchFile scratch(file, file);
        outcome = scratch.copyTarget();
        if (outcome.isSuccess())
            outcome = database.open(scratch.path(), file, DatabaseFile::WRITABLE, ToolDatabase::WITHOUT_CATALOGUE);
        if (!outcome.isSuccess())
            return outcome;
        rows = newRows(database, reader.rows(), &present);
        if (database.hasErrors())
            return readFailure(file);
        outcome = addAll(database, rows, file);
        if (outcome.isSuccess())
            outcome = database.file().checkIntegrity();
        database.close();
        if (outcome.isSuccess())
            outcome = scratch.replaceTarget();
        if (!outcome.isSuccess())
            return outcome;
    }
    context.out
        << file
        << QStringLiteral(": %1 chamber(s) added, %2 already there (%3)\n").arg(rows.size()).arg(present).arg(extract);
    return CommandOutcome::success();
}

} // namespace zelmor::tools::databasetool
