#include "Domain/Types/ShortDescription.h"

#include <QCoreApplication>

namespace zelmor::domain::types {

ShortDescription::ShortDescription() = default;

ShortDescription::ShortDescription(const QString& text, const QList<QVariant>& arguments)
    : text(text)
    , arguments(arguments)
{
}

QString ShortDescription::toString() const
{
    QString result = QCoreApplication::translate("AlarmShortDescription", text.toUtf8().constData());
    for (const QVariant& argument : arguments) {
        result = result.arg(argument.toString());
    }
    return result;
}

bool operator==(const ShortDescription& left, const ShortDescription& right)
{
    return left.text == right.text && left.arguments == right.arguments;
}

bool operator!=(const ShortDescription& left, const ShortDescription& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
