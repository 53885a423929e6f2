#pragma once

#include "Domain/Types/UserId.h"

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariant>

namespace zelmor::domain::types {

// A line of the application's log, table "log_entry": what happened, when, and
// by whom. The description is a source text with placeholders; its arguments
// are filled in when it is shown, in the language of that moment.
class ProtocolEntry
{
public:
    ProtocolEntry();
    ProtocolEntry(const QDateTime& time, const QString& description, const QList<QVariant>& arguments,
                  const UserId& userId, const QString& userName = QString());

    // The description translated in the context "ProtocolEntry", then each
    // argument, through translateArgument, into the lowest placeholder left.
    QString getDescription() const;

    // An argument written as "tr(text)" is itself a source text: the text in the
    // brackets comes back translated in the context "ProtocolEntry". Any other
    // argument comes back as it is.
    static QString translateArgument(const QString& argument);

    QDateTime time;
    QString description;
    QList<QVariant> arguments;
    UserId userId;
    // The author's login name as the log store reads it, " (deleted)" appended
    // for a deleted user; not written with the entry.
    QString userName;
};

bool operator==(const ProtocolEntry& left, const ProtocolEntry& right);
bool operator!=(const ProtocolEntry& left, const ProtocolEntry& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::ProtocolEntry)
