#pragma once

#include <QHostAddress>
#include <QMetaType>
#include <QtGlobal>

namespace zelmor::domain::types {

// The address and port of the SirenBox: the columns "sirenbox_ip_address" and
// "sirenbox_port" of the global settings.
class SirenBoxNetworkConfiguration
{
public:
    // The port a configuration has until one is chosen.
    static const quint16 defaultPort_ = 0;

    // No address, the default port.
    SirenBoxNetworkConfiguration();
    SirenBoxNetworkConfiguration(const QHostAddress& address, quint16 port);

    QHostAddress address;
    quint16 port;
};

bool operator==(const SirenBoxNetworkConfiguration& left, const SirenBoxNetworkConfiguration& right);
bool operator!=(const SirenBoxNetworkConfiguration& left, const SirenBoxNetworkConfiguration& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::SirenBoxNetworkConfiguration)
