#pragma once

#include <QObject>
#include <QString>

#include <memory>

class QHostAddress;
class QUdpSocket;

namespace zelmor::simulation {

// The base of the discovery responders: a UDP socket bound to one address
// and port, and the hardware address that goes with that address.
//
// A responder answers from its construction on; a failed bind is passed
// over in silence and leaves a responder that never hears anything.
class UdpBroadCaster : public QObject
{
    Q_OBJECT

public:
    // Binds with ShareAddress, so two responders may share an address and port.
    UdpBroadCaster(const QHostAddress& address, int port);
    ~UdpBroadCaster() override;

    // The hardware address of the up, broadcasting, non-loopback interface
    // that carries the socket's IPv4 address; "00:00:00:00:00:00" when there
    // is none, as for every loopback address.
    QString getMacAddress() const;

    // A silent responder takes every datagram and answers none, printing
    // nothing; the socket stays bound, so that speaking again needs no bind.
    void setSilent(bool silent);
    bool isSilent() const;

protected slots:
    // Runs on each readyRead() of the socket; takes one datagram per call
    // (the socket signals again while datagrams are pending).
    virtual void readUdpData() = 0;

protected:
    const std::unique_ptr<QUdpSocket> socket;

private:
    void datagramsArrived();

    bool silent = false;
};

} // namespace zelmor::simulation
