#include "Tools/SimulationControl/ControlInterface.h"

#include "Tools/Simulation/ChamberSimulation.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/SimulationControl/ControlApi.h"
#include "Tools/SimulationControl/ControlHttpServer.h"
#include "Tools/SimulationControl/ControlRequest.h"
#include "Tools/SimulationControl/ControlResponse.h"

#include <QDir>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTextStream>

#include <sys/resource.h>

#include <cstdio>

namespace zelmor::simulation::control {

namespace {

constexpr int largestPort = 65535;

void printError(const QString& message)
{
    QTextStream error(stderr);
    error << QLatin1String(ControlInterface::option_).chopped(1) << ": " << message << '\n';
}

} // namespace

constexpr char ControlInterface::option_[];
constexpr char ControlInterface::defaultAddress_[];

ControlInterface::ControlInterface() = default;

ControlInterface::~ControlInterface()
{
    // The server calls into the resources while it runs.
    server.reset();
    api.reset();
}

void ControlInterface::takeArgument(const QString& argument)
{
    if (!argument.startsWith(QLatin1String(option_)))
        return;
    requested = true;
    optionValue = argument.mid(int(qstrlen(option_)));
}

bool ControlInterface::checkOption()
{
    if (!requested)
        return true;
    QString error;
    if (parseAddress(optionValue, &address, &port, &error))
        return true;
    printError(error);
    return false;
}

bool ControlInterface::parseAddress(const QString& text, QHostAddress* address, quint16* port, QString* error)
{
    // IPv4 as four dotted numbers (QHostAddress would take "1.2.3" for 1.2.0.3), IPv6 in brackets.
    static const QRegularExpression form(
        QStringLiteral("^(?:(?:\\[([0-9A-Fa-f:.]+)\\]|(\\d{1,3}(?:\\.\\d{1,3}){3}|localhost)):)?(\\d+)$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        *error = QStringLiteral("\"%1\" is not PORT, ADDRESS:PORT or [IPv6 ADDRESS]:PORT").arg(text);
        return false;
    }
    bool ok = false;
    const int number = match.captured(3).toInt(&ok);
    if (!ok || number > largestPort) {
        *error = QStringLiteral("port %1 lies outside 0 to %2").arg(match.captured(3)).arg(largestPort);
        return false;
    }
    QString host = match.captured(1).isEmpty() ? match.captured(2) : match.captured(1);
    if (host.isEmpty())
        host = QLatin1String(defaultAddress_);
    if (host == QLatin1String("localhost"))
        host = QLatin1String(defaultAddress_);
    const QHostAddress parsed(host);
    if (parsed.isNull() || (!match.captured(1).isEmpty() && parsed.protocol() != QAbstractSocket::IPv6Protocol)) {
        *error = QStringLiteral("\"%1\" is no IP address").arg(host);
        return false;
    }
    *address = parsed;
    *port = quint16(number);
    return true;
}

int ControlInterface::connectionLimitFor(int chamberCount)
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return maximumConnections_;
    const qint64 open = QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System).size();
    const qint64 free = qint64(limit.rlim_cur) - open - 2 * qint64(chamberCount) - reservedDescriptors_;
    return int(qBound<qint64>(minimumConnections_, free / 2, maximumConnections_));
}

bool ControlInterface::start(const QList<QSharedPointer<ChamberSimulation>>& chambers)
{
    if (!requested)
        return true;
    api = std::make_unique<ControlApi>(chambers, QRandomGenerator::system()->generate());
    ControlHttpServer::Limits limits;
    limits.connectionLimit = connectionLimitFor(chambers.size());
    ControlApi* const resources = api.get();
    server = std::make_unique<ControlHttpServer>(
        [resources](const ControlRequest& request) { return resources->handle(request); }, limits);
    if (!server->listen(address, port)) {
        printError(server->errorString());
        return false;
    }
    const QString host = address.protocol() == QAbstractSocket::IPv6Protocol
                             ? QStringLiteral("[%1]").arg(address.toString())
                             : address.toString();
    consoleOutput() << "Control interface on http://" << host << ":" << server->serverPort() << "/" << consoleEndLine;
    return true;
}

} // namespace zelmor::simulation::control
