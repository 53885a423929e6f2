#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace zelmor::testsupport {

// A network namespace of its own for one test, with a unique name, removed
// again when the object goes (also when the test fails half-way). Tests put
// a veth pair inside (both ends; there is no dummy link type everywhere) and
// as many addresses as they need. Needs root and "ip netns".
//
// Client sockets are made inside the namespace by a short-lived thread that
// enters it, so the test itself stays where it is and hands the descriptor
// to a Qt socket.
class NetworkNamespace
{
public:
    // Root, and "ip netns" works. Otherwise `why` says what is missing.
    static bool isAvailable(QString* why);

    NetworkNamespace();
    ~NetworkNamespace();
    NetworkNamespace(const NetworkNamespace&) = delete;
    NetworkNamespace& operator=(const NetworkNamespace&) = delete;

    bool isValid() const { return valid_; }
    QString name() const { return name_; }
    QString lastError() const { return lastError_; }

    // "ip -n <name> <arguments>"; false with lastError() on failure.
    bool ip(const QStringList& arguments);
    // A veth pair with both ends inside, both up.
    bool addVethPair(const QString& first, const QString& second);
    bool addAddress(const QString& interfaceName, const QString& addressWithPrefix);
    // The hardware address that "ip link" shows, lower case with colons.
    QString macAddress(const QString& interfaceName);

    // A TCP socket inside, connected to address:port; -1 when refused or on failure.
    qintptr connectedTcpSocket(const QString& address, quint16 port) const;
    // A UDP socket inside, bound to address (port 0: any).
    qintptr boundUdpSocket(const QString& address, quint16 port = 0) const;

private:
    QString name_;
    QString lastError_;
    bool valid_ = false;
};

} // namespace zelmor::testsupport
