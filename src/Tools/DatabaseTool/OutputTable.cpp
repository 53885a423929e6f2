#include "Tools/DatabaseTool/OutputTable.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace zelmor::tools::databasetool {

namespace {

constexpr int columnGap = 2;

// A value alone in JSON, with the escapes and number forms of Qt's writer.
QString jsonText(const QJsonValue& value)
{
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(1, array.size() - 2));
}

} // namespace

OutputTable::OutputTable(const QList<Column>& columns)
    : columns_(columns)
{
}

void OutputTable::addRow(const QList<QJsonValue>& cells)
{
    Q_ASSERT(cells.size() == columns_.size());
    rows_.append(cells);
}

QString OutputTable::cellText(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        return {};
    case QJsonValue::Bool:
        return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    case QJsonValue::String:
        return value.toString();
    default:
        return jsonText(value);
    }
}

QString OutputTable::toText() const
{
    QList<int> widths;
    QList<bool> numeric;
    for (int column = 0; column < columns_.size(); ++column) {
        int width = columns_.at(column).title.size();
        bool numbers = !rows_.isEmpty();
        for (const QList<QJsonValue>& row : rows_) {
            width = qMax(width, cellText(row.at(column)).size());
            numbers = numbers && (row.at(column).isDouble() || row.at(column).isNull());
        }
        widths.append(width);
        numeric.append(numbers);
    }
    const auto line = [&](const QStringList& cells) {
        QString text;
        for (int column = 0; column < cells.size(); ++column) {
            const bool last = column == cells.size() - 1;
            const QString cell = numeric.at(column) ? cells.at(column).rightJustified(widths.at(column))
                                 : last             ? cells.at(column)
                                                    : cells.at(column).leftJustified(widths.at(column));
            text += cell + (last ? QString() : QString(columnGap, QLatin1Char(' ')));
        }
        // Trailing blanks of an empty last cell help nobody.
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
        return text + QLatin1Char('\n');
    };
    QStringList titles;
    for (const Column& column : columns_)
        titles.append(column.title);
    QString text = line(titles);
    for (const QList<QJsonValue>& row : rows_) {
        QStringList cells;
        for (const QJsonValue& value : row)
            cells.append(cellText(value));
        text += line(cells);
    }
    return text;
}

QString OutputTable::toJson() const
{
    if (rows_.isEmpty())
        return QStringLiteral("[]\n");
    QString text = QStringLiteral("[\n");
    for (int index = 0; index < rows_.size(); ++index) {
        QStringList members;
        for (int column = 0; column < columns_.size(); ++column)
            members.append(jsonText(columns_.at(column).key) + QStringLiteral(": ")
                           + jsonText(rows_.at(index).at(column)));
        text += QStringLiteral("  {") + members.join(QStringLiteral(", ")) + QLatin1Char('}')
                + (index + 1 < rows_.size() ? QStringLiteral(",\n") : QStringLiteral("\n"));
    }
    return text + QStringLiteral("]\n");
}

} // namespace zelmor::tools::databasetool
