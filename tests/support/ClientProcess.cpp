#include "support/ClientProcess.h"

#include <QProcess>
#include <QtTest>

namespace zelmor::testsupport {

namespace {

constexpr char python[] = "/usr/bin/python3";

// Debian's pymodbus 3.0 needs python3-serial-asyncio, which it only
// recommends; the set-up installs it.
constexpr char pymodbusPreamble[] = R"(import sys
from pymodbus.client import ModbusTcpClient, ModbusSerialClient
from pymodbus.framer.rtu_framer import ModbusRtuFramer
)";

constexpr char operationsScript[] = R"(
kind, host, *rest = sys.argv[1].split(":")
timeout, unit = float(sys.argv[2]), int(rest[-1])
if kind == "rtu":
    client = ModbusSerialClient(host, baudrate=9600, bytesize=8, parity="N", stopbits=1, timeout=timeout, retries=0)
else:
    framer = {"framer": ModbusRtuFramer} if kind == "rtu-over-tcp" else {}
    client = ModbusTcpClient(host, port=int(rest[0]), timeout=timeout, retries=0, **framer)
if not client.connect():
    print("no connection")
    sys.exit(1)
calls = {"holding": client.read_holding_registers, "input": client.read_input_registers,
         "coils": client.read_coils, "register": client.write_register,
         "registers": lambda address, *words, slave: client.write_registers(address, list(words), slave=slave),
         "coil": lambda address, on, slave: client.write_coil(address, bool(on), slave=slave)}
for operation in sys.argv[3:]:
    name, address, *numbers = operation.split(":")
    numbers = [int(n, 0) for n in numbers]
    try:
        reply = calls[name](int(address, 0), *numbers, slave=unit)
    except Exception:
        reply = None
    if reply is None or (reply.isError() and not hasattr(reply, "exception_code")):
        print("error")
    elif reply.isError():
        print("exception", reply.exception_code)
    elif name in ("holding", "input"):
        print(*reply.registers)
    elif name == "coils":
        print(*[int(bit) for bit in reply.bits[:numbers[0]]])
    else:
        print("ok")
client.close()
)";

ClientResult runPymodbus(const QString& script, const QStringList& arguments = {}, int timeoutMs = 30000)
{
    return runClient(QLatin1String(python), QStringList{"-c", pymodbusPreamble + script} + arguments, timeoutMs);
}

} // namespace

ClientResult runClient(const QString& program, const QStringList& arguments, int timeoutMs)
{
    ClientResult result;
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted(timeoutMs))
        return result;
    // The servers under test live in this process: let the event loop run
    // while the client talks to them.
    qRegisterMetaType<QProcess::ExitStatus>();
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

QStringList runModbusOperations(const QString& target, const QStringList& operations, double replyTimeoutS)
{
    // Enough for every operation to time out once.
    const int timeoutMs = 10000 + static_cast<int>(replyTimeoutS * 1000) * (operations.size() + 1);
    const ClientResult result = runPymodbus(
        QLatin1String(operationsScript), QStringList{target, QString::number(replyTimeoutS)} + operations, timeoutMs);
    QStringList lines;
    for (const QString& line : QString::fromUtf8(result.standardOutput).split(QLatin1Char('\n'))) {
        if (!line.trimmed().isEmpty())
            lines << line.trimmed();
    }
    if (!result.finished || result.exitCode != 0)
        lines << QStringLiteral("client failed: ") + QString::fromUtf8(result.standardError);
    return lines;
}

bool hasPymodbus()
{
    static const bool available = [] {
        ClientResult const result = runPymodbus(QStringLiteral("print('ok')"));
        return result.finished && result.exitCode == 0;
    }();
    return available;
}

} // namespace zelmor::testsupport
