#include "Domain/Types/ChamberTypeId.h"

namespace zelmor::domain::types {

ChamberTypeId::ChamberTypeId()
    : ChamberTypeId(0, 0)
{
}

ChamberTypeId::ChamberTypeId(quint64 typeId, quint64 additionalInfoId)
    : typeId(typeId)
    , additionalInfoId(additionalInfoId)
{
}

bool operator==(const ChamberTypeId& left, const ChamberTypeId& right)
{
    return left.typeId == right.typeId && left.additionalInfoId == right.additionalInfoId;
}

bool operator!=(const ChamberTypeId& left, const ChamberTypeId& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
