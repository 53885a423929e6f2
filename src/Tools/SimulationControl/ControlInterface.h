#pragma once

#include <QHostAddress>
#include <QList>
#include <QSharedPointer>
#include <QString>

#include <memory>

namespace zelmor::simulation {
class ChamberSimulation;
} // namespace zelmor::simulation

namespace zelmor::simulation::control {

class ControlApi;
class ControlHttpServer;

// The control interface as the tool's entry point sees it: the option
// "--control=ADDRESS:PORT" and the HTTP server over the fleet that it asks
// for. Without the option nothing of it exists: no socket, no line printed,
// no hook on a chamber.
class ControlInterface
{
public:
    static constexpr char option_[] = "--control=";
    static constexpr char defaultAddress_[] = "127.0.0.1";
    // Exit statuses of the tool.
    static constexpr int badOption_ = 2;
    static constexpr int notListening_ = 1;
    // Descriptors kept free for the chambers' own clients, beyond two per chamber.
    static constexpr int reservedDescriptors_ = 64;
    static constexpr int maximumConnections_ = 512;
    static constexpr int minimumConnections_ = 16;

    ControlInterface();
    ~ControlInterface();

    // Takes the option from one element of the command line, the last one
    // winning; other elements are left alone.
    void takeArgument(const QString& argument);
    bool isRequested() const { return requested; }
    // Whether the option's value is "PORT", "ADDRESS:PORT" or "[IPv6]:PORT";
    // when not, prints why to standard error.
    bool checkOption();
    // Serves the fleet, printing "Control interface on http://ADDRESS:PORT/";
    // true at once when the option wasn't given. When the address can't be
    // bound, prints why to standard error and answers false.
    bool start(const QList<QSharedPointer<ChamberSimulation>>& chambers);

    // For the value behind "--control="; false with a message when it isn't one.
    static bool parseAddress(const QString& text, QHostAddress* address, quint16* port, QString* error);
    // As many connections as the free descriptors allow next to the fleet's
    // own: half of what remains after two per chamber and a reserve.
    static int connectionLimitFor(int chamberCount);

private:
    bool requested = false;
    QString optionValue;
    QHostAddress address;
    quint16 port = 0;
    std::unique_ptr<ControlApi> api;
    std::unique_ptr<ControlHttpServer> server;
};

} // namespace zelmor::simulation::control
