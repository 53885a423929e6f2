#pragma once

#include <QJsonValue>
#include <QList>
#include <QString>

namespace zelmor::tools::databasetool {

// Rows for a person or for a script: the same cells as a text table with
// aligned columns, or as a JSON array with one object per row, its keys in
// column order.
//
//     OutputTable table({{"id", "ID"}, {"name", "NAME"}});
//     table.addRow({1, "KBF 240 E6 at 10.0.0.1"});
//     out << (json ? table.toJson() : table.toText());
class OutputTable
{
public:
    struct Column
    {
        QString key;   // in JSON
        QString title; // over the text column
    };

    explicit OutputTable(const QList<Column>& columns);

    // One cell for each column, in column order.
    void addRow(const QList<QJsonValue>& cells);
    int rowCount() const { return rows_.size(); }

    // The titles, then one line for each row; numbers right-aligned, null as
    // nothing, true and false as yes and no.
    QString toText() const;
    // "[\n" one object a line "]\n"; "[]\n" for no rows.
    QString toJson() const;

    // A cell as the text table shows it.
    static QString cellText(const QJsonValue& value);

private:
    QList<Column> columns_;
    QList<QList<QJsonValue>> rows_;
};

} // namespace zelmor::tools::databasetool
