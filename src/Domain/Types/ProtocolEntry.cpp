#include "Domain/Types/ProtocolEntry.h"

#include <QCoreApplication>
#include <QRegExp>

namespace zelmor::domain::types {

namespace {

const char* const translationContext = "ProtocolEntry";

} // namespace

ProtocolEntry::ProtocolEntry()
    : userId(0)
{
}

ProtocolEntry::ProtocolEntry(const QDateTime& time, const QString& description, const QList<QVariant>& arguments,
                             const UserId& userId, const QString& userName)
    : time(time)
    , description(description)
    , arguments(arguments)
    , userId(userId)
    , userName(userName)
{
}

QString ProtocolEntry::getDescription() const
{
    QString result = QCoreApplication::translate(translationContext, description.toUtf8().constData());
    for (const QVariant& argument : arguments) {
        result = result.arg(translateArgument(argument.toString()));
    }
    return result;
}

QString ProtocolEntry::translateArgument(const QString& argument)
{
    QRegExp marked(QStringLiteral("^tr\\((.*)\\)$"));
    if (!marked.exactMatch(argument)) {
        return argument;
    }
    return QCoreApplication::translate(translationContext, marked.cap(1).toUtf8().constData());
}

bool operator==(const ProtocolEntry& left, const ProtocolEntry& right)
{
    return left.time == right.time && left.description == right.description && left.arguments == right.arguments
           && left.userId == right.userId && left.userName == right.userName;
}

bool operator!=(const ProtocolEntry& left, const ProtocolEntry& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
