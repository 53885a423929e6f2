#pragma once

#include "Domain/Types/DatabaseConnectionError.h"
#include "Domain/Types/UserLevel.h"

#include <QList>

namespace zelmor::domain::types {
class ProtocolEntry;
class TimeSpan;
class UserId;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// The application's log. Entries keep the arguments of their text apart, so
// that the text is translated when it is shown. Every operation returns its
// empty value (false, an empty list) on failure and reports it through error().
class IProtocolDatabaseConnection
{
public:
    virtual ~IProtocolDatabaseConnection();

    virtual bool addProtocolEntry(const zelmor::domain::types::ProtocolEntry& entry) = 0;
    // The entries of users of the given level or below within the span (both
    // ends included, a null end open), oldest first.
    virtual QList<zelmor::domain::types::ProtocolEntry>
    getProtocolEntries(const zelmor::domain::types::TimeSpan& span, zelmor::domain::types::UserLevel level) const = 0;
    // The entries of one user within the span, oldest first.
    virtual QList<zelmor::domain::types::ProtocolEntry>
    getProtocolEntries(const zelmor::domain::types::TimeSpan& span,
                       const zelmor::domain::types::UserId& user) const = 0;
    // Whether the log names the user: such a user can't be deleted outright.
    virtual bool hasProtocolEntries(const zelmor::domain::types::UserId& user) const = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
