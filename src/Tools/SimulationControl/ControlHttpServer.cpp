#include "Tools/SimulationControl/ControlHttpServer.h"

#include "Tools/SimulationControl/ControlRequest.h"
#include "Tools/SimulationControl/ControlResponse.h"

#include <QLoggingCategory>
#include <QSocketNotifier>

#include <microhttpd.h>

#include <arpa/inet.h>
#include <netinet/in.h>

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>

Q_LOGGING_CATEGORY(CONTROLHTTPSERVER, "zelmor.ControlHttpServer", QtWarningMsg)

namespace zelmor::simulation::control {

namespace {

constexpr int payloadTooLarge = 413;
constexpr int logLineSize = 512;

// Everything of a request but its body is the library's until the request is
// complete; the body is gathered here, up to the limit.
struct PendingRequest
{
    QByteArray body;
};

} // namespace

struct ControlHttpServer::Callbacks
{
    static MHD_Result request(void* cls, MHD_Connection* connection, const char* url, const char* method,
                              const char* version, const char* uploadData, size_t* uploadDataSize, void** requestState)
    {
        Q_UNUSED(version)
        auto* const server = static_cast<ControlHttpServer*>(cls);
        auto* pending = static_cast<PendingRequest*>(*requestState);
        if (!pending) {
            // Headers complete, body not yet read: the place to refuse one that is announced too large.
            const char* const length =
                MHD_lookup_connection_value(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_CONTENT_LENGTH);
            bool ok = false;
            const qulonglong announced = length ? QByteArray(length).trimmed().toULongLong(&ok) : 0;
            if (length && (!ok || announced > qulonglong(server->limits.maximumBodyBytes))) {
                return queue(connection, ControlResponse::error(payloadTooLarge,
                                                                QStringLiteral("request body of %1 bytes; at most %2 "
                                                                               "are taken")
                                                                    .arg(QString::fromLatin1(length).trimmed())
                                                                    .arg(server->limits.maximumBodyBytes)));
            }
            *requestState = new PendingRequest;
            return MHD_YES;
        }
        if (*uploadDataSize > 0) {
            // A chunked body has no length in advance; past the limit the connection ends.
            if (pending->body.size() + qint64(*uploadDataSize) > server->limits.maximumBodyBytes) {
                qCDebug(CONTROLHTTPSERVER) << "body above the limit, closing the connection";
                return MHD_NO;
            }
            pending->body.append(uploadData, int(*uploadDataSize));
            *uploadDataSize = 0;
            return MHD_YES;
        }

        ControlRequest request;
        request.method = method;
        request.path = QString::fromUtf8(url);
        MHD_get_connection_values(connection, MHD_GET_ARGUMENT_KIND, &Callbacks::queryItem, &request);
        request.body = pending->body;
        return queue(connection, server->handler(request));
    }

    static MHD_Result queryItem(void* cls, MHD_ValueKind kind, const char* key, const char* value)
    {
        Q_UNUSED(kind)
        static_cast<ControlRequest*>(cls)->query.append(
            qMakePair(QString::fromUtf8(key), value ? QString::fromUtf8(value) : QString()));
        return MHD_YES;
    }

    static MHD_Result queue(MHD_Connection* connection, const ControlResponse& answer)
    {
        MHD_Response* const response = MHD_create_response_from_buffer(
            size_t(answer.body.size()), const_cast<char*>(answer.body.constData()), MHD_RESPMEM_MUST_COPY);
        if (!response)
            return MHD_NO;
        if (!answer.contentType.isEmpty())
            MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, answer.contentType.constData());
        MHD_add_response_header(response, MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
        for (const auto& [name, value] : answer.headers)
            MHD_add_response_header(response, name.constData(), value.constData());
        const MHD_Result queued = MHD_queue_response(connection, unsigned(answer.status), response);
        MHD_destroy_response(response);
        return queued;
    }

    static void completed(void* cls, MHD_Connection* connection, void** requestState, MHD_RequestTerminationCode code)
    {
        Q_UNUSED(cls)
        Q_UNUSED(connection)
        Q_UNUSED(code)
        delete static_cast<PendingRequest*>(*requestState);
        *requestState = nullptr;
    }

    // Above the limit a connection is closed as soon as it is accepted: a
    // client learns at once, and the descriptor is free again.
    static MHD_Result accept(void* cls, const sockaddr* address, socklen_t length)
    {
        Q_UNUSED(address)
        Q_UNUSED(length)
        const auto* const server = static_cast<const ControlHttpServer*>(cls);
        return server->connections < server->limits.connectionLimit ? MHD_YES : MHD_NO;
    }

    static void connection(void* cls, MHD_Connection* connection, void** socketState,
                           MHD_ConnectionNotificationCode code)
    {
        Q_UNUSED(connection)
        Q_UNUSED(socketState)
        auto* const server = static_cast<ControlHttpServer*>(cls);
        server->connections += code == MHD_CONNECTION_NOTIFY_STARTED ? 1 : -1;
    }

    static void log(void* cls, const char* format, va_list arguments)
    {
        Q_UNUSED(cls)
        char line[logLineSize];
        std::vsnprintf(line, sizeof line, format, arguments);
        qCDebug(CONTROLHTTPSERVER) << QByteArray(line).trimmed().constData();
    }
};

ControlHttpServer::ControlHttpServer(Handler handler, Limits limits, QObject* parent)
    : QObject(parent)
    , handler(std::move(handler))
    , limits(limits)
{
    timeout.setSingleShot(true);
    connect(&timeout, &QTimer::timeout, this, &ControlHttpServer::run);
}

ControlHttpServer::~ControlHttpServer()
{
    notifier.reset();
    if (daemon)
        MHD_stop_daemon(daemon);
}

bool ControlHttpServer::listen(const QHostAddress& address, quint16 port)
{
    if (daemon) {
        error = QStringLiteral("already listening");
        return false;
    }
    sockaddr_in v4{};
    sockaddr_in6 v6{};
    const sockaddr* socketAddress = nullptr;
    unsigned int flags = MHD_USE_EPOLL | MHD_USE_ERROR_LOG;
    if (address.protocol() == QAbstractSocket::IPv4Protocol) {
        v4.sin_family = AF_INET;
        v4.sin_port = htons(port);
        v4.sin_addr.s_addr = htonl(address.toIPv4Address());
        socketAddress = reinterpret_cast<const sockaddr*>(&v4);
    } else if (address.protocol() == QAbstractSocket::IPv6Protocol) {
        v6.sin6_family = AF_INET6;
        v6.sin6_port = htons(port);
        const Q_IPV6ADDR bytes = address.toIPv6Address();
        std::memcpy(&v6.sin6_addr, &bytes, sizeof v6.sin6_addr);
        socketAddress = reinterpret_cast<const sockaddr*>(&v6);
        flags |= MHD_USE_IPv6;
    } else {
        error = QStringLiteral("not an IPv4 or IPv6 address: %1").arg(address.toString());
        return false;
    }

    // The library's own limit lies one above ours, so that it never stops
    // accepting: what lies above ours is closed by the accept callback.
    daemon = MHD_start_daemon(flags, port, &Callbacks::accept, this, &Callbacks::request, this, MHD_OPTION_SOCK_ADDR,
                              socketAddress, MHD_OPTION_CONNECTION_LIMIT, unsigned(limits.connectionLimit + 1),
                              MHD_OPTION_CONNECTION_TIMEOUT, unsigned(limits.idleTimeoutS), MHD_OPTION_NOTIFY_COMPLETED,
                              &Callbacks::completed, this, MHD_OPTION_NOTIFY_CONNECTION, &Callbacks::connection, this,
                              MHD_OPTION_EXTERNAL_LOGGER, &Callbacks::log, this, MHD_OPTION_END);
    if (!daemon) {
        error = QStringLiteral("cannot listen on %1 port %2: %3")
                    .arg(address.toString())
                    .arg(port)
                    .arg(QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    const MHD_DaemonInfo* const info = MHD_get_daemon_info(daemon, MHD_DAEMON_INFO_EPOLL_FD);
    if (!info) {
        error = QStringLiteral("the HTTP library offers no epoll descriptor");
        MHD_stop_daemon(daemon);
        daemon = nullptr;
        return false;
    }
    notifier = std::make_unique<QSocketNotifier>(info->epoll_fd, QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &ControlHttpServer::run);
    scheduleTimeout();
    return true;
}

bool ControlHttpServer::isListening() const
{
    return daemon != nullptr;
}

quint16 ControlHttpServer::serverPort() const
{
    if (!daemon)
        return 0;
    const MHD_DaemonInfo* const info = MHD_get_daemon_info(daemon, MHD_DAEMON_INFO_BIND_PORT);
    return info ? info->port : 0;
}

QString ControlHttpServer::errorString() const
{
    return error;
}

void ControlHttpServer::run()
{
    MHD_run(daemon);
    scheduleTimeout();
}

void ControlHttpServer::scheduleTimeout()
{
    // The library must run again within its timeout even without an event:
    // to close idle connections, and to go on with data it has read ahead.
    MHD_UNSIGNED_LONG_LONG milliseconds = 0;
    if (MHD_get_timeout(daemon, &milliseconds) == MHD_YES)
        timeout.start(int(qMin<MHD_UNSIGNED_LONG_LONG>(milliseconds, INT_MAX)));
    else
        timeout.stop();
}

} // namespace zelmor::simulation::control
