#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QVariant>

// The writing convention of all stores, the counterpart of sqlhelper: what a
// record holds as "nothing" (an empty text, an id of 0, a number of -1, an
// invalid time) goes to the database as a NULL of the column's type, and
// times go in UTC.
namespace zelmor::base::connection::databaseconnection::sqlvalue {

// A NULL of the given type: valid, isNull() true, bound as NULL.
template<typename T>
QVariant null()
{
    // QVariant(int, const void*) would make a non-null default value.
    return QVariant(static_cast<QVariant::Type>(qMetaTypeId<T>()));
}

// The value, or a NULL of its type when it equals none.
template<typename T>
QVariant orNull(const T& value, const T& none)
{
    return value == none ? null<T>() : QVariant::fromValue(value);
}

// NULL for the empty text.
QVariant text(const QString& value);
// NULL for the empty array.
QVariant bytes(const QByteArray& value);
// The time in UTC; NULL for an invalid time.
QVariant utcTime(const QDateTime& value);

} // namespace zelmor::base::connection::databaseconnection::sqlvalue
