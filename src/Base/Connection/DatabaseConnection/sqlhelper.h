#pragma once

#include <QDateTime>
#include <QString>
#include <QTime>
#include <QVariant>

// The reading convention of all row parsers: NULL and the empty text are one
// thing, and both give the fallback. A value that is there but does not convert
// gives the conversion's zero, not the fallback.
namespace zelmor::base::connection::databaseconnection::sqlhelper {

// False for NULL (an invalid QVariant) and for an empty text.
bool isSqlValueValid(const QVariant& value);

QVariant readSqlValue(const QVariant& value, const QVariant& fallback);
QString readStringSqlValue(const QVariant& value, const QString& fallback);
int readIntSqlValue(const QVariant& value, int fallback);
unsigned readUIntSqlValue(const QVariant& value, unsigned fallback);
float readFloatSqlValue(const QVariant& value, float fallback);
bool readBoolSqlValue(const QVariant& value, bool fallback);
QDateTime readDateTimeSqlValue(const QVariant& value, const QDateTime& fallback);
QTime readTimeSqlValue(const QVariant& value, const QTime& fallback);

} // namespace zelmor::base::connection::databaseconnection::sqlhelper
