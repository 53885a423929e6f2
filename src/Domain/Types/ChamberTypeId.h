#pragma once

#include <QtGlobal>

namespace zelmor::domain::types {

// One orderable variant of a chamber model: the "chamber_type" row and the
// "additional_info" row (0 when the type has none).
class ChamberTypeId
{
public:
    ChamberTypeId();
    ChamberTypeId(quint64 typeId, quint64 additionalInfoId);

    quint64 typeId;
    quint64 additionalInfoId;
};

bool operator==(const ChamberTypeId& left, const ChamberTypeId& right);
bool operator!=(const ChamberTypeId& left, const ChamberTypeId& right);

} // namespace zelmor::domain::types
