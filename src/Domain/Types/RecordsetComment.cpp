#include "Domain/Types/RecordsetComment.h"

namespace zelmor::domain::types {

RecordsetComment::RecordsetComment()
    : RecordsetComment(QDateTime(), 0, -1, QString())
{
}

RecordsetComment::RecordsetComment(const QDateTime& time, const UserId& userId, const RecordsetId& recordsetId,
                                   const QString& text)
    : time(time)
    , userId(userId)
    , recordsetId(recordsetId)
    , text(text)
{
}

bool RecordsetComment::isValid() const
{
    return time.isValid() && recordsetId >= 1 && userId != 0;
}

bool operator==(const RecordsetComment& left, const RecordsetComment& right)
{
    return left.time == right.time && left.userId == right.userId && left.recordsetId == right.recordsetId
           && left.text == right.text;
}

bool operator!=(const RecordsetComment& left, const RecordsetComment& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
