#include "Domain/Types/ControllerAddress.h"

namespace zelmor::domain::types {

ControllerAddress::ControllerAddress()
    : ControllerAddress(-1, QString(), UNKNOWN, QMetaType::UnknownType, 1, -1, QString())
{
}

ControllerAddress::ControllerAddress(ControllerAddressId id, const QString& address, Access access,
                                     QMetaType::Type type, int arraySize, int setPointNr, const QString& description)
    : id(id)
    , address(address)
    , access(access)
    , type(type)
    , arraySize(arraySize)
    , setPointNr(setPointNr)
    , description(description)
{
}

ControllerAddress ControllerAddress::placeholder()
{
    return ControllerAddress();
}

bool operator==(const ControllerAddress& left, const ControllerAddress& right)
{
    return left.id == right.id && left.address == right.address && left.access == right.access
           && left.type == right.type && left.arraySize == right.arraySize && left.setPointNr == right.setPointNr
           && left.description == right.description;
}

bool operator!=(const ControllerAddress& left, const ControllerAddress& right)
{
    return !(left == right);
}

bool operator<(const ControllerAddress& left, const ControllerAddress& right)
{
    return left.address < right.address;
}

} // namespace zelmor::domain::types
