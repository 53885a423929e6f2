#pragma once

#include "Tools/Simulation/ChamberSimulation.h"

#include <QModbusDataUnit>
#include <QObject>
#include <QString>

class QModbusRtuSerialSlave;

namespace zelmor::simulation {

// One chamber served as a Modbus RTU slave on a serial port, 9600 8N1.
//
// Unlike the Modbus TCP chamber, Qt keeps real register tables here, 32
// entries each from address 0; a register number is a reader address. Every
// 2 s the reader's values are copied into the input registers (a 32-bit
// value gives its low word to both of its registers; only int, float and
// bool values are copied), so clients read values up to 2 s old. Holding
// registers are never filled from the reader: they read back what a client
// wrote. A client's write goes back to the reader through dataWritten().
class ModbusChamberSimulation : public QObject, public ChamberSimulation
{
    Q_OBJECT

public:
    static constexpr int protocolId_ = 1;
    static constexpr int tableSize_ = 32;
    static constexpr int copyIntervalMs_ = 2000;
    static constexpr int baudRate_ = 9600;

    // `connection` is "<port>:<slave address>", as "COM3:1". The copy timer
    // runs from here on; the reader is to be set within its first interval.
    ModbusChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType, const QString& connection);
    ~ModbusChamberSimulation() override;

    // Opens the serial port; a port that can't be opened leaves the chamber
    // running without clients, and the answer is true all the same.
    bool start() override;
    int getProtocolId() const override;
    // Offline the serial port is closed; online it is opened again if it was open.
    bool setOnline(bool online) override;

    // The port's name as given to the device ("COM3"), and the slave address.
    QString getSerialPortName() const;
    int getServerAddress() const;

public slots:
    // Copies what a client wrote at `address` back to the reader, by the
    // type of the reader's value there (int from two words, low first; bool;
    // a float always gets 0); other types and unknown addresses are left.
    void dataWritten(QModbusDataUnit::RegisterType table, int address, int size);

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    QModbusRtuSerialSlave* const device;
    int timer;
    bool openAgain = false;
};

} // namespace zelmor::simulation
