#include "Domain/Types/ZelmorNetworkConfiguration.h"

namespace zelmor::domain::types {

ZelmorNetworkConfiguration::ZelmorNetworkConfiguration()
    : ZelmorNetworkConfiguration(QHostAddress(), defaultPort_)
{
}

ZelmorNetworkConfiguration::ZelmorNetworkConfiguration(const QHostAddress& address, quint16 port)
    : address(address)
    , port(port)
{
}

bool operator==(const ZelmorNetworkConfiguration& left, const ZelmorNetworkConfiguration& right)
{
    return left.address == right.address && left.port == right.port;
}

bool operator!=(const ZelmorNetworkConfiguration& left, const ZelmorNetworkConfiguration& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
