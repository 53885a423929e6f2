#pragma once

#include <QHostAddress>
#include <QMetaType>
#include <QtGlobal>

namespace zelmor::domain::types {

// The address and port of the ZELMOR connection: the columns "zelmor_ip_address"
// and "zelmor_port" of the global settings.
class ZelmorNetworkConfiguration
{
public:
    // The port a configuration has until one is chosen.
    static const quint16 defaultPort_ = 22392;

    // No address, the default port.
    ZelmorNetworkConfiguration();
    ZelmorNetworkConfiguration(const QHostAddress& address, quint16 port);

    QHostAddress address;
    quint16 port;
};

bool operator==(const ZelmorNetworkConfiguration& left, const ZelmorNetworkConfiguration& right);
bool operator!=(const ZelmorNetworkConfiguration& left, const ZelmorNetworkConfiguration& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::ZelmorNetworkConfiguration)
