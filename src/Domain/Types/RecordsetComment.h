#pragma once

#include "Domain/Types/RecordsetId.h"
#include "Domain/Types/UserId.h"

#include <QDateTime>
#include <QMetaType>
#include <QString>

namespace zelmor::domain::types {

// A user's note on one recordset.
class RecordsetComment
{
public:
    // Invalid time, no user, no recordset (-1), no text.
    RecordsetComment();
    RecordsetComment(const QDateTime& time, const UserId& userId, const RecordsetId& recordsetId, const QString& text);

    // The time is valid, the recordset id at least 1 and the user id not 0.
    bool isValid() const;

    QDateTime time;
    UserId userId;
    RecordsetId recordsetId;
    QString text;
};

bool operator==(const RecordsetComment& left, const RecordsetComment& right);
bool operator!=(const RecordsetComment& left, const RecordsetComment& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::RecordsetComment)
