#pragma once

#include "Tools/Simulation/ChamberSimulation.h"

#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QSharedPointer>
#include <QString>

#include <memory>

class QTcpServer;
class QTcpSocket;

namespace zelmor::simulation {

class TlxBroadCastSimulation;

// One chamber served over the TLX line protocol: plain text requests that
// read or write single values by a hexadecimal CAN identifier, each answered
// 20 ms later with a framed text (a length line, then the body).
//
// The chamber listens on its own address from start() and has its own
// discovery responder from construction. It serves one client at a time:
// a new connection ends the former one at once. Every request goes to the
// reader of the base class; the identifier is the reader address as it is.
class TlxChamberSimulation : public QObject, public ChamberSimulation
{
    Q_OBJECT

public:
    static constexpr int protocolId_ = 4;
    static constexpr int defaultPort_ = 9000;
    static constexpr int answerDelayMs_ = 20;
    static constexpr char defaultIpAddress_[] = "127.0.0.1";

    // On 127.0.0.1, port 9000.
    explicit TlxChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType);
    // On the address given, port 9000.
    TlxChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType, const QString& ipAddress);
    // The responder stays on port 9001 whatever the port.
    TlxChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType, const QString& ipAddress,
                         int port);
    ~TlxChamberSimulation() override;

    // Prints the start line and listens. A second call prints again and
    // answers false, leaving the running listener as it is.
    bool start() override;
    int getProtocolId() const override;
    QString getIpAddress() const override;

    // Offline the chamber stops listening, drops its client and silences
    // its responder; online it listens again if it listened before.
    bool setOnline(bool online) override;
    int getPort() const override;
    int getClientCount() const override;
    bool acceptsFaults() const override;

    // A stray answer made of `bytes`: never a frame, since it doesn't start
    // with a digit of a length line.
    static QByteArray strayAnswer(QByteArray bytes);

    // Frames an answer body: its length in characters (before UTF-8), at
    // least two decimal digits, CR LF, then the body, in UTF-8.
    static QByteArray frame(QString body);

private slots:
    void chamberConnected();
    void readData();

private:
    QByteArray answerTo(const QByteArray& request) const;
    // False when there is no client to take it.
    bool sendToCurrentClient(const QByteArray& answer);

    const std::unique_ptr<QTcpServer> server;
    std::unique_ptr<QTcpSocket> currentClient;
    QSharedPointer<TlxBroadCastSimulation> broadcaster;
    QHostAddress ipAddress;
    int port;
    bool listenAgain = false;
};

} // namespace zelmor::simulation
