#pragma once

#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariant>

namespace zelmor::domain::types {

// The one-line text of an alarm: a source text with placeholders and the
// arguments that fill them.
class ShortDescription
{
public:
    ShortDescription();
    ShortDescription(const QString& text, const QList<QVariant>& arguments = QList<QVariant>());

    // The text translated in the context "AlarmShortDescription", then each
    // argument in turn into the lowest placeholder left.
    QString toString() const;

    QString text;
    QList<QVariant> arguments;
};

bool operator==(const ShortDescription& left, const ShortDescription& right);
bool operator!=(const ShortDescription& left, const ShortDescription& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::ShortDescription)
