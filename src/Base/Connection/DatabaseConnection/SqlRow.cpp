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
    const QDateTime time = toUtcTime(position);
    return time.isValid() ? time.toLocalTime() : QDateTime();
}

QDateTime SqlRow::toUtcTime(int position) const
{
    const QVariant stored = value(position);
    if (stored.userType() == QMetaType::QString) {
        const QDateTime time = fromDriverText(*static_cast<const QString*>(stored.constData()));
        if (time.isValid()) {
            return time;
        }
    }
    QDateTime time = sqlhelper::readDateTimeSqlValue(stored, QDateTime());
    if (!time.isValid()) {
        return QDateTime();
    }
    if (time.timeSpec() == Qt::LocalTime) {
        time.setTimeSpec(Qt::UTC);
    }
    return time.toUTC();
}

QDateTime SqlRow::fromDriverText(const QString& text)
{
    // "2024-02-29T23:59:58.123Z", as the driver writes times; read without the
    // framework's general parser, which costs more than the rest of a
    // recordset. Any other text, or a date or time that doesn't exist, takes
    // the general way.
    static const char form[] = "dddd-dd-ddTdd:dd:dd.dddZ";
    constexpr int length = sizeof(form) - 1;
    if (text.size() != length) {
        return QDateTime();
    }
    const QChar* chars = text.constData();
    for (int index = 0; index < length; ++index) {
        const bool digit = chars[index] >= QLatin1Char('0') && chars[index] <= QLatin1Char('9');
        if (form[index] == 'd' ? !digit : chars[index] != QLatin1Char(form[index])) {
            return QDateTime();
        }
    }
    const auto number = [chars](int from, int digits) {
        int result = 0;
        for (int index = from; index < from + digits; ++index) {
            result = result * 10 + (chars[index].unicode() - '0');
        }
        return result;
    };
    const QDate date(number(0, 4), number(5, 2), number(8, 2));
    const QTime time(number(11, 2), number(14, 2), number(17, 2), number(20, 3));
    return date.isValid() && time.isValid() ? QDateTime(date, time, Qt::UTC) : QDateTime();
}

} // namespace zelmor::base::connection::databaseconnection
