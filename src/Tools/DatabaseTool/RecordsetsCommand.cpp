#include "Tools/DatabaseTool/RecordsetsCommand.h"

#include "Domain/Types/RecordingData.h"
#include "Domain/Types/Recordset.h"
#include "Domain/Types/TimeSpan.h"
#include "Tools/DatabaseTool/Progress.h"
#include "Tools/DatabaseTool/RecordsetCsv.h"
#include "Tools/DatabaseTool/ToolContext.h"
#include "Tools/DatabaseTool/ToolDatabase.h"

#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

namespace zelmor::tools::databasetool {

using zelmor::domain::types::RecordingData;
using zelmor::domain::types::RecordingId;
using zelmor::domain::types::Recordset;
using zelmor::domain::types::TimeSpan;

namespace {

const QString standardOutput = QStringLiteral("-");

// The rows as the store gives them: all, thinned over the whole recording,
// or those of a span.
QList<Recordset> readRows(ToolDatabase& database, const RecordingId& recording, const TimeSpan& span, qint64 maxCount)
{
    if (!span.hasStart() && !span.hasEnd())
        return database.facade().getRecordsets(recording, 0, 0, maxCount);
    const QList<Recordset> rows = database.facade().getRecordsets(recording, span, -1);
    if (maxCount < 0)
        return rows;
    // The store thins the whole recording only; a span is thinned by its rule here.
    QList<Recordset> thinned;
    for (qint64 index : RecordsetsCommand::thinnedRows(rows.size(), maxCount))
        thinned.append(rows.at(int(index)));
    return thinned;
}

} // namespace

QList<qint64> RecordsetsCommand::thinnedRows(qint64 count, qint64 maxCount)
{
    QList<qint64> indexes;
    if (count < maxCount) {
        for (qint64 index = 0; index < count; ++index)
            indexes.append(index);
    } else if (maxCount == 1) {
        indexes.append(0);
    } else {
        for (qint64 k = 0; k < maxCount; ++k)
            indexes.append(k * (count - 1) / (maxCount - 1));
    }
    return indexes;
}

CommandOutcome RecordsetsCommand::run(const ToolContext& context)
{
    const QString file = context.file();
    const QString out = context.line.value(QStringLiteral("--csv"));
    const RecordingId recording = int(context.line.number(QStringLiteral("RECORDING")));
    const qint64 maxCount =
        context.line.isSet(QStringLiteral("--max")) ? context.line.number(QStringLiteral("--max")) : -1;
    const TimeSpan span(context.line.time(QStringLiteral("--from")), context.line.time(QStringLiteral("--to")));
    if (out != standardOutput && QFileInfo(out).exists()
        && QFileInfo(out).canonicalFilePath() == QFileInfo(file).canonicalFilePath())
        return CommandOutcome::failure(USAGE_ERROR, out + QStringLiteral(": is the database itself"));

    // The recording's signals, their names and units, come from the catalogue.
    ToolDatabase database(context.key(), context.line.value(QStringLiteral("--catalogue")));
    CommandOutcome outcome = database.open(file, file, DatabaseFile::READ_ONLY, ToolDatabase::CATALOGUE_NEEDED);
    if (!outcome.isSuccess())
        return outcome;
    const QSharedPointer<RecordingData> data = database.facade().getRecordingData(recording);
    if (database.hasErrors())
        return CommandOutcome::failure(COMMAND_FAILED,
                                       file + QStringLiteral(": recording %1 can't be read").arg(int(recording)));
    if (!data || !data->isValid())
        return CommandOutcome::failure(NOT_FOUND, file + QStringLiteral(": has no recording %1").arg(int(recording)));

    Progress progress(context.err, context.errIsTerminal);
    const qint64 stored = database.facade().getRecordsetLenght(recording);
    progress.say(QStringLiteral("reading %1 rows of recording %2").arg(stored).arg(int(recording)));
    const QList<Recordset> rows = readRows(database, recording, span, maxCount);
    if (database.hasErrors())
        return CommandOutcome::failure(
            COMMAND_FAILED, file + QStringLiteral(": the rows of recording %1 can't be read").arg(int(recording)));

    const RecordsetCsv csv(data->chamberSignals);
    // A file appears whole or not at all.
    QSaveFile target(out);
    QTextStream fileStream;
    const bool toFile = out != standardOutput;
    if (toFile) {
        if (!target.open(QIODevice::WriteOnly))
            return CommandOutcome::failure(CANNOT_OPEN,
                                           out + QStringLiteral(": can't be written (%1)").arg(target.errorString()));
        fileStream.setDevice(&target);
        fileStream.setCodec("UTF-8");
    }
    QTextStream& stream = toFile ? fileStream : context.out;
    stream << csv.header();
    for (int index = 0; index < rows.size(); ++index) {
        stream << csv.row(rows.at(index));
        progress.count(QStringLiteral("writing"), index + 1, rows.size());
    }
    stream.flush();
    progress.finish();
    if (!toFile)
        return CommandOutcome::success();
    if (stream.status() != QTextStream::Ok || !target.commit())
        return CommandOutcome::failure(CANNOT_OPEN,
                                       out + QStringLiteral(": can't be written (%1)").arg(target.errorString()));
    context.out << out
                << QStringLiteral(": %1 row(s) of recording %2 (\"%3\") of %4\n")
                       .arg(rows.size())
                       .arg(int(recording))
                       .arg(data->name, file);
    return CommandOutcome::success();
}

} // namespace zelmor::tools::databasetool
