// The HTTP server on libmicrohttpd, run by this test's event loop, with a
// handler that notes what it got: requests on real sockets, and the hostile
// ones that must cost nothing (large bodies, half-sent requests, more
// connections than allowed).

#include "Tools/SimulationControl/ControlHttpServer.h"
#include "Tools/SimulationControl/ControlRequest.h"
#include "Tools/SimulationControl/ControlResponse.h"
#include "support/HttpClient.h"

#include <QTcpSocket>
#include <QtTest>

#include <memory>

using namespace zelmor::simulation::control;
using zelmor::testsupport::httpRequest;
using zelmor::testsupport::HttpResponse;

namespace {

const QString localhost = QStringLiteral("127.0.0.1");

using QueryItems = QList<QPair<QString, QString>>;

} // namespace

class TestControlHttpServer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void requestReachesTheHandler_data();
    void requestReachesTheHandler();
    void announcedLargeBodyRefusedUnread();
    void chunkedBodyAboveTheLimitEndsTheConnection();
    void halfSentRequestHoldsUpNobody();
    void connectionsAboveTheLimitClosedAtOnce();
    void portInUse();

private:
    // A raw connection to the server, connected.
    std::unique_ptr<QTcpSocket> connection() const
    {
        auto socket = std::make_unique<QTcpSocket>();
        socket->connectToHost(QHostAddress(localhost), server->serverPort());
        return socket->waitForConnected(5000) ? std::move(socket) : nullptr;
    }

    QList<ControlRequest> seen;
    std::unique_ptr<ControlHttpServer> server;
};

void TestControlHttpServer::init()
{
    seen.clear();
    ControlHttpServer::Limits limits;
    limits.maximumBodyBytes = 1000;
    limits.connectionLimit = 3;
    limits.idleTimeoutS = 1;
    server = std::make_unique<ControlHttpServer>(
        [this](const ControlRequest& request) {
            seen.append(request);
            ControlResponse response = ControlResponse::text(201, "text/plain", "answer to " + request.method);
            response.headers.append(qMakePair(QByteArray("X-Total-Count"), QByteArray("7")));
            return response;
        },
        limits);
    QVERIFY2(server->listen(QHostAddress(localhost), 0), qPrintable(server->errorString()));
    QVERIFY(server->serverPort() != 0);
}

void TestControlHttpServer::requestReachesTheHandler_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QueryItems>("query");
    QTest::newRow("GET with a query") << QByteArray("GET") << QByteArray("/chambers?address=10.0.0.1&q=KBF%20240")
                                      << QByteArray() << "/chambers"
                                      << QueryItems{{"address", "10.0.0.1"}, {"q", "KBF 240"}};
    QTest::newRow("PUT with a body") << QByteArray("PUT") << QByteArray("/chambers/3/online") << QByteArray("false")
                                     << "/chambers/3/online" << QueryItems{};
    QTest::newRow("body at the limit") << QByteArray("PUT") << QByteArray("/x") << QByteArray(1000, '7') << "/x"
                                       << QueryItems{};
    QTest::newRow("escaped path") << QByteArray("DELETE") << QByteArray("/chambers/%31/faults") << QByteArray()
                                  << "/chambers/1/faults" << QueryItems{};
    QTest::newRow("a method HTTP doesn't know")
        << QByteArray("FOO") << QByteArray("/") << QByteArray() << "/" << QueryItems{};
}

// The handler gets the request whole; its answer goes out as it made it.
void TestControlHttpServer::requestReachesTheHandler()
{
    QFETCH(QByteArray, method);
    QFETCH(QByteArray, target);
    QFETCH(QByteArray, body);
    QFETCH(QString, path);
    QFETCH(QueryItems, query);
    const HttpResponse response = httpRequest(localhost, server->serverPort(), method, target, body);
    QCOMPARE(response.status, 201);
    QCOMPARE(response.headers.value("content-type"), QByteArray("text/plain"));
    QCOMPARE(response.headers.value("x-total-count"), QByteArray("7"));
    QCOMPARE(response.headers.value("cache-control"), QByteArray("no-store"));
    QCOMPARE(response.body, "answer to " + method);
    QCOMPARE(seen.size(), 1);
    QCOMPARE(seen.at(0).method, method);
    QCOMPARE(seen.at(0).path, path);
    QCOMPARE(seen.at(0).query, query);
    QCOMPARE(seen.at(0).body, body);
}

// 100 MB announced: 413 comes back while not one byte of the body is sent,
// and the handler never hears of it.
void TestControlHttpServer::announcedLargeBodyRefusedUnread()
{
    const auto client = connection();
    QVERIFY(client);
    client->write("PUT /chambers/0/faults HTTP/1.1\r\nHost: x\r\nContent-Length: 104857600\r\n\r\n");
    QVERIFY(QTest::qWaitFor([&] { return client->state() == QAbstractSocket::UnconnectedState; }, 5000));
    const QByteArray answer = client->readAll();
    QVERIFY2(answer.startsWith("HTTP/1.1 413 "), answer.constData());
    QVERIFY2(answer.endsWith("{\"error\":\"request body of 104857600 bytes; at most 1000 are taken\"}\n"),
             answer.constData());
    QVERIFY(seen.isEmpty());
}

void TestControlHttpServer::chunkedBodyAboveTheLimitEndsTheConnection()
{
    const auto client = connection();
    QVERIFY(client);
    client->write("PUT /x HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n");
    for (int chunk = 0; chunk < 3; ++chunk)
        client->write("190\r\n" + QByteArray(400, 'a') + "\r\n");
    QVERIFY(QTest::qWaitFor([&] { return client->state() == QAbstractSocket::UnconnectedState; }, 5000));
    QVERIFY(seen.isEmpty());
}

// One client stops in the middle of its request line; another is answered
// meanwhile; the first is closed once idle for the timeout (1 s here).
void TestControlHttpServer::halfSentRequestHoldsUpNobody()
{
    const auto halfSent = connection();
    QVERIFY(halfSent);
    halfSent->write("GET /chambers HTTP/1.1\r\nHo");
    QVERIFY(halfSent->waitForBytesWritten(5000));
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(httpRequest(localhost, server->serverPort(), "GET", "/").status, 201);
    QVERIFY2(clock.elapsed() < 500, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(halfSent->state(), QAbstractSocket::ConnectedState);
    QVERIFY(QTest::qWaitFor([&] { return halfSent->state() == QAbstractSocket::UnconnectedState; }, 5000));
    QVERIFY2(clock.elapsed() >= 900, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(seen.size(), 1);
}

// Three idle connections take every place; a fourth is closed at once, with
// no answer; when one of the three goes, requests are served again.
void TestControlHttpServer::connectionsAboveTheLimitClosedAtOnce()
{
    std::vector<std::unique_ptr<QTcpSocket>> idle;
    for (int index = 0; index < 3; ++index)
        idle.push_back(connection());
    QVERIFY(QTest::qWaitFor([&] { return server->getConnectionCount() == 3; }, 5000));
    const auto fourth = connection();
    QVERIFY(fourth);
    QVERIFY(QTest::qWaitFor([&] { return fourth->state() == QAbstractSocket::UnconnectedState; }, 500));
    QCOMPARE(fourth->readAll(), QByteArray());
    QCOMPARE(server->getConnectionCount(), 3);

    idle.front()->abort();
    QVERIFY(QTest::qWaitFor([&] { return server->getConnectionCount() == 2; }, 5000));
    QCOMPARE(httpRequest(localhost, server->serverPort(), "GET", "/").status, 201);
}

void TestControlHttpServer::portInUse()
{
    ControlHttpServer second([](const ControlRequest&) { return ControlResponse(); }, ControlHttpServer::Limits());
    QVERIFY(!second.listen(QHostAddress(localhost), server->serverPort()));
    QVERIFY2(second.errorString().startsWith(
                 QStringLiteral("cannot listen on 127.0.0.1 port %1: ").arg(server->serverPort())),
             qPrintable(second.errorString()));
    QVERIFY(!second.isListening());
}

QTEST_GUILESS_MAIN(TestControlHttpServer)
#include "tst_controlhttpserver.moc"
