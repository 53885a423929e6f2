#pragma once

#include "Tools/Simulation/ChamberSimulation.h"

#include <QByteArray>
#include <QHash>
#include <QHostAddress>
#include <QModbusTcpServer>
#include <QSharedPointer>
#include <QString>
#include <QVariant>
#include <QVector>

namespace zelmor::domain::types {
class ControllerAddress;
} // namespace zelmor::domain::types

namespace zelmor::simulation {

class UdpBroadCaster;

// One chamber served over Modbus TCP. Qt's server does the listening, the
// framing and the function codes; the register storage is the chamber's
// reader itself, reached on every request (no map is ever set). A register
// number is a reader address with no offset, whatever the register type, so
// coils, discrete inputs, input and holding registers are one address space,
// and the value's type decides how many registers long it is (see
// convertQVariant). Messages of writes go to the console.
//
// The chamber has its own XPort discovery responder from construction and
// listens on its own address from start().
class ModbusTcpChamberSimulation : public ChamberSimulation, public QModbusTcpServer
{
public:
    static constexpr int protocolId_ = 3;
    static constexpr int defaultPort_ = 502;
    static constexpr int serverAddress_ = 255;
    static constexpr char defaultIpAddress_[] = "127.0.0.1";
    // The word that stands for a value of a type with no Modbus layout.
    static constexpr unsigned short noValueWord_ = 32767;
    // A read-only unsigned short at address 0; kept for the monitoring
    // application's link test, not read here.
    static domain::types::ControllerAddress const accessibilityTestAddress_;

    // On 127.0.0.1, port 502.
    explicit ModbusTcpChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType);
    // On the address given, port 502.
    ModbusTcpChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType, const QString& ipAddress);
    ModbusTcpChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType, const QString& ipAddress,
                               int port);
    ~ModbusTcpChamberSimulation() override;

    // Prints the start line and listens; a second call only prints again.
    bool start() override;
    int getProtocolId() const override;
    QString getIpAddress() const override;

    // Offline the chamber stops listening, ends its clients' connections and
    // silences its responder; online it listens again if it did before.
    bool setOnline(bool online) override;
    int getPort() const override;
    int getClientCount() const override;
    // While its fault policy is active the chamber takes the requests off
    // the connection before Qt's server sees them, and frames the answers
    // itself, so that it can hold them back, leave them out or spoil them.
    bool acceptsFaults() const override;

    // A stray answer made of `bytes`: never a frame, since its protocol
    // identifier isn't 0.
    static QByteArray strayAnswer(QByteArray bytes);

    // A value as Modbus registers, by its type: a bool is the word 0 (so a
    // true reads as 0 too), an unsigned short one word, an int, unsigned int
    // and float two words with the low half first; any other type, and an
    // invalid value, the single word 32767.
    QVector<unsigned short> convertQVariant(const QVariant& value) const;
    // Registers back into a value of the type of `example`, the inverse of
    // the above; a bool is true for a word that isn't 0, and a type with no
    // layout gives an invalid QVariant.
    QVariant convertQVariant(QVector<unsigned short> words, const QVariant& example) const;

protected:
    // Reads the start address only and answers with as many registers as
    // its value has, whatever the count asked for. An unknown address is no
    // failure: it reads as the single word 32767.
    bool readData(QModbusDataUnit* unit) const override;
    // Takes exactly as many registers as the current value has, starting at
    // its address; anything else fails with a console message.
    bool writeData(const QModbusDataUnit& unit) override;
    // Counts the request and its answer.
    QModbusResponse processRequest(const QModbusPdu& request) override;

private:
    class ConnectionObserver;

    void initClass();
    void takeOverRequests(QTcpSocket* client);
    void answerWithFault(QTcpSocket* client, const QByteArray& frame);

    QHostAddress ipAddress;
    QSharedPointer<UdpBroadCaster> broadcaster;
    int port;
    bool listenAgain = false;
    // Bytes of a request taken off a connection and not yet complete.
    QHash<QTcpSocket*, QByteArray> takenOver;
};

} // namespace zelmor::simulation
