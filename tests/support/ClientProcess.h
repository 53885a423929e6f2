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
ClientResult runClient(const QString& program, const QStringList& arguments, int timeoutMs = 30000);

// Runs pymodbus's synchronous client (/usr/bin/python3) against one server
// and does the operations in order, one output line each. `target` is one of
//   "tcp:<host>:<port>:<unit>"            Modbus TCP
//   "rtu:<serial device>:<unit>"          Modbus RTU, 9600 8N1
//   "rtu-over-tcp:<host>:<port>:<unit>"   RTU frames over a TCP socket
// An operation is "<name>:<address>[:<number>...]", numbers in decimal or
// 0x hexadecimal:
//   holding:A:N, input:A:N   read N registers: "v0 v1 ..."
//   coils:A:N                read N coils: "0 1 ..."
//   register:A:V             write one register (function 6): "ok"
//   registers:A:V0:V1...     write registers (function 16): "ok"
//   coil:A:0|1               write one coil (function 5): "ok"
// An exception reply prints "exception <code>"; an answer the library
// can't decode, or none, prints "error". Each client waits `replyTimeoutS`.
QStringList runModbusOperations(const QString& target, const QStringList& operations, double replyTimeoutS = 3);

// Whether python3 with pymodbus is installed.
bool hasPymodbus();

} // namespace zelmor::testsupport
