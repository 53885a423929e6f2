#pragma once

#include "Tools/Simulation/ChamberSimulation.h"

#include <QByteArray>
#include <QDateTime>
#include <QElapsedTimer>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QVariant>

namespace zelmor::simulation {

class ModbusOverTcpServer;

// One slave behind a simulated serial-to-Ethernet converter: Modbus RTU
// frames, slave address and CRC included, through the converter's TCP port.
//
// Up to 100 of these share one converter and hear every frame; each answers
// only to its own slave address. Functions 3 and 4 (read), 6 and 16 (write)
// are served by hand, straight from the reader of the base class, with a
// register number being the reader address. Registers of a data logger that
// the reader doesn't know are answered from built-in values. Nothing of a
// request is checked beyond its length and slave address, not even the CRC,
// and a request that isn't understood stays unanswered: there is no
// exception reply.
//
// Known behaviour, kept as it is: a read makes no progress on a value with
// fewer than two bytes (an unknown register read with a quantity other than
// 2 or 4, an empty list of logger records, a Char, SChar, UChar or double
// value), and then repeats forever; so does a function 16 write over a
// value that has no bytes at all. The whole program stands still then.
class ModbusRtuOverTcpChamberSimulation : public QObject, public ChamberSimulation
{
    Q_OBJECT

public:
    static constexpr int protocolId_ = 2;
    static constexpr int converterPort_ = 10001;

    // Joins (or opens) the converter on the address and port and answers
    // its frames from now on, before start().
    ModbusRtuOverTcpChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType,
                                      const QString& ipAddress, int port, int modbusAddress, QObject* parent = nullptr);
    ~ModbusRtuOverTcpChamberSimulation() override;

    // Prints the start line; there is nothing to start.
    bool start() override;
    int getProtocolId() const override;
    // The converter's address: the same for all chambers behind it.
    QString getIpAddress() const override;
    int getModbusAddress() const override;
    int getModbusAdr() const;

    // Offline the chamber stays silent to its slave address; the converter
    // and the other chambers on it go on.
    bool setOnline(bool online) override;
    int getPort() const override;
    // The converter's clients: they are shared by all of its chambers.
    int getClientCount() const override;
    bool acceptsFaults() const override;

    // A stray answer made of `bytes`: never a frame, since its CRC is wrong.
    static QByteArray strayAnswer(QByteArray bytes);

public slots:
    // One frame as the converter got it. Answers through the converter's
    // write() before returning, or not at all.
    void dataReceived(const QByteArray& data);

private:
    void readRegisters(const QByteArray& request);
    void writeSingleRegister(const QByteArray& request);
    void writeMultipleRegisters(const QByteArray& request);
    QVariant loggerRecords(int quantity);
    QVariant read(int address);
    void write(int address, const QVariant& value);
    // Sends the answer to the request being handled, now or after the
    // delay of its fault, and counts it.
    void answer(const QByteArray& reply, bool isError = false);

    ModbusOverTcpServer* const converter;
    const int modbusAddress;
    const QString ipAddress;
    const int port;
    // Of the request being handled.
    QElapsedTimer sinceArrival;
    int answerDelayMs = 0;
    unsigned int loggerIndex = 0;
    unsigned int loggerSeconds = 0;
    unsigned short loggerCount = 0;
    const QDateTime loggerEpoch;
};

} // namespace zelmor::simulation
