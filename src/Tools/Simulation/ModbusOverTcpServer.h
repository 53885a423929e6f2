#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>

class QTcpServer;
class QTcpSocket;

namespace zelmor::simulation {

// The TCP port of a simulated serial-to-Ethernet converter: any number of
// clients, and any number of chambers behind it that all hear every frame.
//
// It knows nothing of Modbus beyond the smallest frame and the CRC. Each
// read of a client is one frame: it is not buffered across reads, and one of
// fewer than `minimumFrameSize_` bytes is dropped. A frame is handed to the
// chambers by `dataReceived`, which must be connected directly: a chamber
// answers with `write()` while the signal runs, and the answer goes to the
// client that sent the frame. Afterwards there is no way back to it.
class ModbusOverTcpServer : public QObject
{
    Q_OBJECT

public:
    // Slave address, function, four bytes, CRC.
    static constexpr int minimumFrameSize_ = 8;
    static constexpr int crcSize_ = 2;

    // Listens at once; a failure to listen is passed over in silence.
    ModbusOverTcpServer(const QString& address, int port);
    ~ModbusOverTcpServer() override;

    // To the client whose frame is being handled; nothing outside of that.
    void write(const QByteArray& data);
    // That client, for an answer that is to go out later; null outside of
    // the handling of a frame.
    QTcpSocket* getSendingSocket() const;
    // Clients connected now.
    int getClientCount() const;

    // CRC-16/MODBUS of `data`, low byte first as it goes on the wire.
    static QByteArray calcCrc(const QByteArray& data);

signals:
    // The whole frame, CRC included, which is not checked.
    void dataReceived(QByteArray data);

public slots:
    void newConnectionRequest();
    void newDataAvailable();

private:
    const std::unique_ptr<QTcpServer> server;
    QTcpSocket* sendingSocket = nullptr;
};

} // namespace zelmor::simulation
