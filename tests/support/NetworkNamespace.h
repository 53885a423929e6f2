#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace zelmor::testsupport {

// A network namespace of its own for one test, with a veth pair "fa"/"fb"
// (both ends inside, up) carrying the given addresses ("10.1.0.1/24").
// Removed again when the object goes, also when the test fails half-way;
// ones that killed runs left behind go with the next. Needs root.
//
// Client sockets are made inside by a short-lived thread that enters the
// namespace, so the test stays where it is and hands the descriptor on.
class NetworkNamespace
{
public:
    // Root, and "ip netns" works.
    static bool isAvailable();

    NetworkNamespace(const QStringList& onFa, const QStringList& onFb);
    ~NetworkNamespace();
    NetworkNamespace(const NetworkNamespace&) = delete;
    NetworkNamespace& operator=(const NetworkNamespace&) = delete;

    QString name() const { return name_; }
    // Empty when the namespace is complete.
    QString lastError() const { return lastError_; }
    // The hardware address of "fa" or "fb" as "ip link" shows it, in upper
    // case. "fb", made as the peer, comes before "fa" in the list of interfaces.
    QString macAddress(const QString& device = QStringLiteral("fa")) const;

    // A TCP socket inside, connected to address:port; -1 when refused or on failure.
    qintptr connectedTcpSocket(const QString& address, quint16 port) const;
    // A UDP socket inside, bound to address and any port.
    qintptr boundUdpSocket(const QString& address) const;

private:
    QString name_;
    QString lastError_;
};

} // namespace zelmor::testsupport
