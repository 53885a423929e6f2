#include "Base/Connection/DatabaseConnection/SqlRow.h"

#include "Base/Connection/DatabaseConnection/sqlhelper.h"

namespace zelmor::base::connection::databaseconnection {

SqlRow::SqlRow(const QList<QVariant>& values)
    : values_(values)
{
}

int SqlRow::width() const
{
    return values_.size();
}

QVariant SqlRow::value(int position) const
{
    return values_.value(position);
}

bool SqlRow::isNull(int position) const
{
    return !sqlhelper::isSqlValueValid(value(position));
}

QVariant SqlRow::toVariant(int position, const QVariant& fallback) const
{
    return sqlhelper::readSqlValue(value(position), fallback);
}

QString SqlRow::toString(int position, const QString& fallback) const
{
    return sqlhelper::readStringSqlValue(value(position), fallback);
}

int SqlRow::toInt(int position, int fallback) const
{
    return sqlhelper::readIntSqlValue(value(position), fallback);
}

unsigned SqlRow::toUInt(int position, unsigned fallback) const
{
    return sqlhelper::readUIntSqlValue(value(position), fallback);
}

qint64 SqlRow::toLongLong(int position, qint64 fallback) const
{
    return isNull(position) ? fallback : value(position).toLongLong();
}

float SqlRow::toFloat(int position, float fallback) const
{
    return sqlhelper::readFloatSqlValue(value(position), fallback);
}

double SqlRow::toDouble(int position, double fallback) const
{
    return isNull(position) ? fallback : value(position).toDouble();
}

bool SqlRow::toBool(int position, bool fallback) const
{
    return sqlhelper::readBoolSqlValue(value(position), fallback);
}

QByteArray SqlRow::toByteArray(int position) const
{
    return isNull(position) ? QByteArray() : value(position).toByteArray();
}

QTime SqlRow::toTime(int position, const QTime& fallback) const
{
    return sqlhelper::readTimeSqlValue(value(position), fallback);
}

QDateTime SqlRow::toLocalTime(int position) const
{
    QDateTime time = sqlhelper::readDateTimeSqlValue(value(position), QDateTime());
    if (!time.isValid()) {
        return QDateTime();
    }
    if (time.timeSpec() == Qt::LocalTime) {
        time.setTimeSpec(Qt::UTC);
    }
    return time.toLocalTime();
}

} // namespace zelmor::base::connection::databaseconnection
