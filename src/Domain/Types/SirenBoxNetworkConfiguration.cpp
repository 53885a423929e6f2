#include "Domain/Types/SirenBoxNetworkConfiguration.h"

namespace zelmor::domain::types {

SirenBoxNetworkConfiguration::SirenBoxNetworkConfiguration()
    : SirenBoxNetworkConfiguration(QHostAddress(), defaultPort_)
{
}

SirenBoxNetworkConfiguration::SirenBoxNetworkConfiguration(const QHostAddress& address, quint16 port)
    : address(address)
    , port(port)
{
}

bool operator==(const SirenBoxNetworkConfiguration& left, const SirenBoxNetworkConfiguration& right)
{
    return left.address == right.address && left.port == right.port;
}

bool operator!=(const SirenBoxNetworkConfiguration& left, const SirenBoxNetworkConfiguration& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
