#pragma once

#include "Domain/Types/ChamberData.h"

#include <QList>
#include <QString>

namespace zelmor::tools::databasetool {

// The rows of the extract that chamber-simulator writes for a fleet
// ("sqlextract.sql"): one INSERT into table "chamber" a line. They are read
// as data, never run: a row holds 18 values where the delivered table has 19
// columns. The values stand in the table's order without "is_active":
//
//     id, chamber_type_id, chamber_type_additional_info_id, serial_no,
//     is_archived, is_subscribed, chamber_name, ip_v4_address, ip_v6_address,
//     mac_address, modbus_address, com_port, parity, baud_rate, data_bits,
//     stop_bits, protocol_id, converter_id
//
// so a chamber from the extract has no activation state (NULL). A row of 19
// values, as a dump of the table gives, is read in the table's own order.
// The row's id is not kept: the database gives each chamber its own.
class ExtractReader
{
public:
    struct Row
    {
        int lineNumber; // from 1
        zelmor::domain::types::ChamberData chamber;
    };

    // Every row of the text; false at the first line that can't be read,
    // which errorLine() and errorText() name. Blank lines are passed over.
    bool read(const QString& text);

    QList<Row> rows() const { return rows_; }
    int errorLine() const { return errorLine_; }
    QString errorText() const { return errorText_; }

    // One line; on failure the chamber is the empty one and error says why.
    static zelmor::domain::types::ChamberData parseLine(const QString& line, QString* error);

private:
    QList<Row> rows_;
    int errorLine_ = 0;
    QString errorText_;
};

} // namespace zelmor::tools::databasetool
