#include "Base/Connection/DatabaseConnection/sqlvalue.h"

namespace zelmor::base::connection::databaseconnection::sqlvalue {

QVariant text(const QString& value)
{
    return value.isEmpty() ? null<QString>() : QVariant(value);
}

QVariant bytes(const QByteArray& value)
{
    return value.isEmpty() ? null<QByteArray>() : QVariant(value);
}

QVariant utcTime(const QDateTime& value)
{
    return value.isValid() ? QVariant(value.toUTC()) : null<QDateTime>();
}

} // namespace zelmor::base::connection::databaseconnection::sqlvalue
