#pragma once

#include "Domain/Types/ChamberSignal.h"

#include <QMap>
#include <QString>

namespace zelmor::domain::types {
class Recordset;
} // namespace zelmor::domain::types

namespace zelmor::tools::databasetool {

// The measured rows of a recording as CSV: quoted where a field needs it
// (RFC 4180), lines ending in LF. A column for the time, then one for each
// signal of the recording in ascending signal id, the order in which the
// recordset store gives a row's values.
class RecordsetCsv
{
public:
    // The recording's signals by id, with the names it shows (custom ones included).
    explicit RecordsetCsv(const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals);

    // "time", then each signal's name with its unit in brackets: "PV_Temperature [°C]".
    QString header() const;
    // The time in local time with its offset ("2024-03-01T10:00:00.000+01:00");
    // values in each signal's unit, a switch as 0 or 1, nothing where the row has no value.
    QString row(const zelmor::domain::types::Recordset& recordset) const;

    // A field as CSV wants it: in quotes, with quotes doubled, where it holds
    // a comma, a quote or a line break.
    static QString field(const QString& text);
    // The shortest decimal text that reads back as the same float: 23.3, not 23.299999237060547.
    static QString number(float value);

private:
    QMap<int, zelmor::domain::types::ChamberSignal> signals_;
};

} // namespace zelmor::tools::databasetool
