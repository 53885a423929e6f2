#pragma once

#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Domain/Api/ApplicationTableProperties.h"

#include <QList>
#include <QStringList>
#include <QVariant>

namespace zelmor::domain::types {
class ChamberData;
class RoomPosition;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {

// A chamber as a row of table "chamber", both ways. Reading takes the 19
// columns of prepareChamberColumnNames() in their order; writing gives every
// column but the id in the order of ChamberProperty, with a typed NULL for
// what the chamber lacks: a text for an empty text or a null address, an
// unsigned number for a type id of 0, an integer for a number of -1.
//
// An address goes to the column of its protocol; a chamber reads back with an
// address only when "ip_v4_address" holds something. Static members only; no
// connection is touched.
class SqlChamberRow
{
public:
    static constexpr int columnCount_ = 19;

    SqlChamberRow() = delete;

    static QStringList prepareChamberColumnNames();
    // "is_subscribed" only with withSubscription: the subscription has
    // operations of its own, which an update of the rest leaves alone.
    static QList<SqlQuery::ColumnValuePair> createPropertyValuePairs(const zelmor::domain::types::ChamberData& chamber,
                                                                     bool withSubscription);
    // What createPropertyValuePairs() writes to the property's column.
    static QVariant getPropertyValue(const zelmor::domain::types::ChamberData& chamber,
                                     zelmor::domain::api::ChamberProperty property);
    // The id of a row of prepareChamberColumnNames(), -1 when NULL.
    static int readChamberId(const QList<QVariant>& row);
    // A row of prepareChamberColumnNames(), its width checked by the caller.
    static zelmor::domain::types::ChamberData readChamberData(const QList<QVariant>& row,
                                                              const zelmor::domain::types::RoomPosition& position);
};

} // namespace zelmor::base::connection::databaseconnection
