#pragma once

#include <QHostAddress>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>

class QSocketNotifier;
struct MHD_Connection;
struct MHD_Daemon;

namespace zelmor::simulation::control {

struct ControlRequest;
struct ControlResponse;

// An HTTP/1.1 server on libmicrohttpd, run by the thread's own event loop:
// the library's epoll descriptor is watched by a socket notifier and its
// timeouts by a timer, so that requests are handled between the chambers'
// events, on the same thread, with no lock. No call ever blocks.
//
// Hostile clients cost the chambers nothing they need: a body above the
// limit announced in Content-Length is refused with 413 before any of it is
// read (a chunked one that grows above it ends the connection); at most
// `connectionLimit` connections are kept, further ones are closed at once;
// a connection idle (or half-sent) for `idleTimeoutS` is closed.
class ControlHttpServer : public QObject
{
    Q_OBJECT

public:
    using Handler = std::function<ControlResponse(const ControlRequest&)>;

    struct Limits
    {
        int maximumBodyBytes = 65536;
        int connectionLimit = 256;
        int idleTimeoutS = 10;
    };

    explicit ControlHttpServer(Handler handler, Limits limits, QObject* parent = nullptr);
    ~ControlHttpServer() override;

    // False, with errorString() telling why, when the address can't be bound.
    bool listen(const QHostAddress& address, quint16 port);
    bool isListening() const;
    // The port bound, also when 0 was asked for.
    quint16 serverPort() const;
    QString errorString() const;
    Limits getLimits() const { return limits; }
    int getConnectionCount() const { return connections; }

private:
    // The library's callbacks, which reach in here.
    struct Callbacks;

    void run();
    void scheduleTimeout();

    const Handler handler;
    const Limits limits;
    MHD_Daemon* daemon = nullptr;
    std::unique_ptr<QSocketNotifier> notifier;
    QTimer timeout;
    QString error;
    int connections = 0;
};

} // namespace zelmor::simulation::control
