#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTime>
#include <QVariant>

namespace zelmor::base::connection::databaseconnection {

// One row of a result, read by the positions that its statement gave the
// columns. Stores name the positions with an enumeration next to the column
// list of the statement, so that no bare index stands in a parser:
//
//     enum CameraColumn { CAMERA_ID, CAMERA_USB_PORT, CAMERA_COLUMNS };
//     const SqlRow row(values);
//     camera.usbPort = row.toString(CAMERA_USB_PORT);
//
// The readers follow sqlhelper: NULL and the empty text give the fallback, a
// value that doesn't convert gives the conversion's zero. Times are kept in UTC
// in the database and come back in local time. The width test belongs to the
// caller (SqlStoreChecks::hasWidth); a position past the row's end reads NULL.
// A plain value that touches no connection: rows may be decoded on any thread.
class SqlRow
{
public:
    explicit SqlRow(const QList<QVariant>& values);

    int width() const;

    // The value as the driver gave it.
    QVariant value(int position) const;
    // NULL or the empty text.
    bool isNull(int position) const;
    // The value, or the fallback when NULL.
    QVariant toVariant(int position, const QVariant& fallback) const;
    QString toString(int position, const QString& fallback = QString()) const;
    int toInt(int position, int fallback) const;
    unsigned toUInt(int position, unsigned fallback) const;
    qint64 toLongLong(int position, qint64 fallback) const;
    float toFloat(int position, float fallback) const;
    double toDouble(int position, double fallback) const;
    bool toBool(int position, bool fallback) const;
    // NULL gives an empty array.
    QByteArray toByteArray(int position) const;
    // NULL gives the fallback.
    QTime toTime(int position, const QTime& fallback = QTime()) const;
    // A time written in UTC, in local time; NULL gives an invalid time. A text
    // without an offset, as other tools write it, counts as UTC too.
    QDateTime toLocalTime(int position) const;
    // The same moment in UTC, which costs no time zone rules.
    QDateTime toUtcTime(int position) const;

    // The select list of a row layout: the column of each position, in order.
    //
    //     const RoomProperty roomLayout[ROOM_COLUMNS] = {RoomProperty::ID, ...};
    //     query.selectColumns(SqlRow::columnNames(DC::lookupRoomColumnName, roomLayout));
    template<typename Property, int width>
    static QStringList columnNames(QString (*lookup)(Property), const Property (&layout)[width])
    {
        QStringList names;
        names.reserve(width);
        for (Property property : layout) {
            names.append(lookup(property));
        }
        return names;
    }

private:
    // The driver's text of a time in UTC; invalid for any other text.
    static QDateTime fromDriverText(const QString& text);

    QList<QVariant> values_;
};

} // namespace zelmor::base::connection::databaseconnection
