#include "Base/Connection/DatabaseConnection/sqlhelper.h"

namespace zelmor::base::connection::databaseconnection::sqlhelper {

bool isSqlValueValid(const QVariant& value)
{
    if (!value.isValid())
        return false;
    if (value.userType() == QMetaType::QString)
        return !value.toString().isEmpty();
    return true;
}

QVariant readSqlValue(const QVariant& value, const QVariant& fallback)
{
    return isSqlValueValid(value) ? value : fallback;
}

QString readStringSqlValue(const QVariant& value, const QString& fallback)
{
    return isSqlValueValid(value) ? value.toString() : fallback;
}

int readIntSqlValue(const QVariant& value, int fallback)
{
    return isSqlValueValid(value) ? value.toInt() : fallback;
}

unsigned readUIntSqlValue(const QVariant& value, unsigned fallback)
{
    return isSqlValueValid(value) ? value.toUInt() : fallback;
}

float readFloatSqlValue(const QVariant& value, float fallback)
{
    return isSqlValueValid(value) ? value.toFloat() : fallback;
}

bool readBoolSqlValue(const QVariant& value, bool fallback)
{
    return isSqlValueValid(value) ? value.toBool() : fallback;
}

QDateTime readDateTimeSqlValue(const QVariant& value, const QDateTime& fallback)
{
    return isSqlValueValid(value) ? value.toDateTime() : fallback;
}

QTime readTimeSqlValue(const QVariant& value, const QTime& fallback)
{
    return isSqlValueValid(value) ? value.toTime() : fallback;
}

} // namespace zelmor::base::connection::databaseconnection::sqlhelper
