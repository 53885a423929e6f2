#include "Domain/Types/Int10.h"

namespace zelmor::domain::types {

Int10::Int10()
    : bytes{0, 0}
{
}

Int10::Int10(const Int10& other)
    : bytes{other.bytes[0], other.bytes[1]}
{
}

int Int10::registerMetaType()
{
    return qRegisterMetaType<Int10>("zelmor::domain::types::Int10");
}

bool operator==(const Int10& left, const Int10& right)
{
    return left.bytes[0] == right.bytes[0] && left.bytes[1] == right.bytes[1];
}

bool operator!=(const Int10& left, const Int10& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
