#pragma once

#include <QMetaType>
#include <QtGlobal>

namespace zelmor::domain::types {

// The controller's two-byte "INT10" register value. Only its meta-type number is
// used; there is no arithmetic on it.
class Int10
{
public:
    Int10();
    Int10(const Int10& other);
    Int10& operator=(const Int10& other) = default;

    // Registers the type as "zelmor::domain::types::Int10" and returns its meta-type
    // number; called when the catalogue's type table is built. Repeated calls give
    // the same number.
    static int registerMetaType();

    quint8 bytes[2];
};

bool operator==(const Int10& left, const Int10& right);
bool operator!=(const Int10& left, const Int10& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::Int10)
