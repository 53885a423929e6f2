#pragma once

#include "Tools/DatabaseTool/CommandOutcome.h"

#include <QList>

namespace zelmor::tools::databasetool {

struct ToolContext;

// zelmor-db recordsets FILE RECORDING --csv OUT: a recording's measured rows
// as CSV, read through the recordset store. FILE is only read; OUT is
// written whole or not at all.
class RecordsetsCommand
{
public:
    static CommandOutcome run(const ToolContext& context);

    // The rows a chart of at most maxCount points takes from count rows, by
    // the recordset store's rule: row k * (count - 1) / (maxCount - 1) for
    // each k below maxCount, all rows when there are fewer.
    static QList<qint64> thinnedRows(qint64 count, qint64 maxCount);
};

} // namespace zelmor::tools::databasetool
