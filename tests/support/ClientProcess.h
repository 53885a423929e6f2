#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// Real Modbus clients outside the project (Debian's pymodbus and mbpoll),
// run as child processes against servers living in the test process.
// Each call keeps the test's event loop running until the child ends, so
// that the servers in the test process answer meanwhile.
namespace zelmor::testsupport {

struct ClientResult
{
    bool finished = false; // false: could not start, or killed at the time limit
    int exitCode = -1;
    QByteArray standardOutput;
    QByteArray standardError;
};

// Runs a program with its arguments, killing it after timeoutMs.
ClientResult runClient(QString const& program, QStringList const& arguments, int timeoutMs = 30000);

// Runs a Python 3 script (/usr/bin/python3) whose first lines already have
//   from pymodbus.client import ModbusTcpClient, ModbusSerialClient
//   from pymodbus.framer.rtu_framer import ModbusRtuFramer
// done. Debian's pymodbus 3.0 imports serial_asyncio for its asyncio serial
// client without depending on the package; a stand-in module is put in its
// place when it is missing, which the synchronous clients never touch.
// The script gets `arguments` in sys.argv[1:].
ClientResult runPymodbus(QString const& script, QStringList const& arguments = {}, int timeoutMs = 30000);

// Whether runPymodbus can work here: python3 with pymodbus is installed.
bool hasPymodbus();

// Whether mbpoll is on the PATH.
bool hasMbpoll();

// The lines of a client's standard output, trimmed, empty ones dropped.
QStringList outputLines(ClientResult const& result);

} // namespace zelmor::testsupport
