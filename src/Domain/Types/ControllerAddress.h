#pragma once

#include "Domain/Types/ControllerAddressId.h"

#include <QMetaType>
#include <QString>

namespace zelmor::domain::types {

// One register of a controller as the catalogue describes it.
class ControllerAddress
{
public:
    // Typed so that a number from the database outside the list is still a value.
    enum Access : int { READ_ONLY = 0, WRITE_ONLY = 1, READ_WRITE = 2, UNKNOWN = 3 };

    // The placeholder address.
    ControllerAddress();
    ControllerAddress(ControllerAddressId id, const QString& address, Access access, QMetaType::Type type,
                      int arraySize, int setPointNr, const QString& description);

    // What stands for a register the catalogue doesn't supply: id -1, no address
    // text, unknown access and type, one element, no set point number.
    static ControllerAddress placeholder();

    ControllerAddressId id;
    QString address; // in the controller's own notation
    Access access;
    QMetaType::Type type;
    int arraySize;  // 1 for a scalar
    int setPointNr; // -1 when none
    QString description;
};

bool operator==(const ControllerAddress& left, const ControllerAddress& right);
bool operator!=(const ControllerAddress& left, const ControllerAddress& right);
// By the address text alone, so that registers differing only in their id sort as equivalent.
bool operator<(const ControllerAddress& left, const ControllerAddress& right);

} // namespace zelmor::domain::types
