#include "support/ClientProcess.h"

#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

namespace zelmor::testsupport {

namespace {

constexpr char python[] = "/usr/bin/python3";

constexpr char pymodbusPreamble[] = R"(import sys, types
try:
    import serial_asyncio
except ImportError:
    stand_in = types.ModuleType("serial_asyncio")
    stand_in.create_serial_connection = None
    sys.modules["serial_asyncio"] = stand_in
from pymodbus.client import ModbusTcpClient, ModbusSerialClient
from pymodbus.framer.rtu_framer import ModbusRtuFramer
)";

} // namespace

ClientResult runClient(QString const& program, QStringList const& arguments, int timeoutMs)
{
    ClientResult result;
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted(timeoutMs))
        return result;
    // The servers under test live in this process: let the event loop run
    // while the client talks to them.
    QSignalSpy ended(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished));
    if (!ended.wait(timeoutMs)) {
        process.kill();
        process.waitForFinished();
    } else {
        result.finished = process.exitStatus() == QProcess::NormalExit;
        result.exitCode = process.exitCode();
    }
    result.standardOutput = process.readAllStandardOutput();
    result.standardError = process.readAllStandardError();
    return result;
}

ClientResult runPymodbus(QString const& script, QStringList const& arguments, int timeoutMs)
{
    QStringList all{QStringLiteral("-c"), QLatin1String(pymodbusPreamble) + script};
    all += arguments;
    return runClient(QLatin1String(python), all, timeoutMs);
}

bool hasPymodbus()
{
    static bool const available = [] {
        ClientResult const result = runPymodbus(QStringLiteral("print('ok')"));
        return result.finished && result.exitCode == 0;
    }();
    return available;
}

bool hasMbpoll()
{
    return !QStandardPaths::findExecutable(QStringLiteral("mbpoll")).isEmpty();
}

QStringList outputLines(ClientResult const& result)
{
    QStringList lines;
    for (QString const& line : QString::fromUtf8(result.standardOutput).split(QLatin1Char('\n'))) {
        if (!line.trimmed().isEmpty())
            lines << line.trimmed();
    }
    return lines;
}

} // namespace zelmor::testsupport
