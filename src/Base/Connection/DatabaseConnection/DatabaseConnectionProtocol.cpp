#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlProtocolDatabaseConnection.h"
#include "Domain/Types/ProtocolEntry.h"
#include "Domain/Types/TimeSpan.h"
#include "Domain/Types/UserId.h"

// The log store's interface, passed on call by call.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;

bool DatabaseConnection::addProtocolEntry(const ProtocolEntry& entry)
{
    return protocolStore->addProtocolEntry(entry);
}

QList<ProtocolEntry> DatabaseConnection::getProtocolEntries(const TimeSpan& span, UserLevel level) const
{
    return protocolStore->getProtocolEntries(span, level);
}

QList<ProtocolEntry> DatabaseConnection::getProtocolEntries(const TimeSpan& span, const UserId& user) const
{
    return protocolStore->getProtocolEntries(span, user);
}

bool DatabaseConnection::hasProtocolEntries(const UserId& user) const
{
    return protocolStore->hasProtocolEntries(user);
}

} // namespace zelmor::base::connection::databaseconnection
