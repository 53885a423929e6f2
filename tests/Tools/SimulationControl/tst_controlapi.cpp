// The control interface's resources over a small fleet in this process:
// two TLX chambers, a tunnelled and a Modbus TCP one on this binary's own
// loopback addresses 127.0.68.x, each with a reader of fixed values.

#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ModbusRtuOverTcpChamberSimulation.h"
#include "Tools/Simulation/ModbusTcpChamberSimulation.h"
#include "Tools/Simulation/TlxChamberSimulation.h"
#include "Tools/SimulationControl/ControlApi.h"
#include "Tools/SimulationControl/ControlRequest.h"
#include "Tools/SimulationControl/ControlResponse.h"
#include "support/MapReader.h"

#include <QTcpSocket>
#include <QUrlQuery>
#include <QtTest>

#include <tuple>

using namespace zelmor::simulation;
using namespace zelmor::simulation::control;
using zelmor::domain::types::ChamberTypeData;
using zelmor::testsupport::MapReader;

namespace {

QSharedPointer<ChamberTypeData> type(const char* series, int size, const char* state, const char* controller, int id)
{
    auto data = QSharedPointer<ChamberTypeData>::create();
    std::tie(data->type, data->size, data->developementState, data->controller) =
        std::make_tuple(series, size, state, controller);
    data->chamberTypeId.typeId = quint64(id);
    return data;
}

ControlRequest request(const QByteArray& method, const QString& target, const QByteArray& body = QByteArray())
{
    ControlRequest result;
    result.method = method;
    const int question = target.indexOf(QLatin1Char('?'));
    result.path = target.left(question);
    if (question >= 0)
        result.query = QUrlQuery(target.mid(question + 1)).queryItems(QUrl::FullyDecoded);
    result.body = body;
    return result;
}

} // namespace

class TestControlApi : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void badRequests_data();
    void badRequests();
    void chamberResource();
    void listFilteredAndPaged_data();
    void listFilteredAndPaged();
    void values_data();
    void values();
    void onlineOnTheWire();
    void faultsSetAndCleared();
    void metricsCountTheWire();
    void page();

private:
    QByteArray tlxExchange(const QByteArray& request);

    QSharedPointer<MapReader> reader = QSharedPointer<MapReader>::create();
    QList<QSharedPointer<ChamberSimulation>> fleet;
    std::unique_ptr<ControlApi> api;
};

void TestControlApi::initTestCase()
{
    fleet << QSharedPointer<TlxChamberSimulation>::create(type("HX", 60, "Z6", "TLX", 1), "127.0.68.1")
          << QSharedPointer<TlxChamberSimulation>::create(type("KBF", 240, "E6", "TLX", 9), "127.0.68.2")
          << QSharedPointer<ModbusRtuOverTcpChamberSimulation>::create(type("VT", 4021, "Z3", "Q3", 60), "127.0.68.3",
                                                                       10001, 5)
          << QSharedPointer<ModbusTcpChamberSimulation>::create(type("VC", 7034, "Z2", "KV2", 247), "127.0.68.4",
                                                                15502);
    for (const QSharedPointer<ChamberSimulation>& chamber : fleet) {
        chamber->setSimulationReader(reader);
        chamber->start();
    }
    api = std::make_unique<ControlApi>(fleet, 4711);
}

void TestControlApi::init()
{
    reader->values = {{0x10, 42}, {0x11, true}, {0x1001A0F0, 23.3f}, {0x20, QVariant::fromValue(ushort(7))}};
    reader->readOnly = {0x11};
    reader->writes.clear();
}

void TestControlApi::badRequests_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("error");
    auto row = [](const char* name, const char* method, const char* target, const char* body, int status,
                  const char* error) {
        QTest::newRow(name) << QByteArray(method) << QString::fromLatin1(target) << QByteArray(body) << status
                            << QByteArray(error);
    };
    row("unknown resource", "GET", "/nothing", "", 404, "no resource /nothing");
    row("id past the fleet", "GET", "/chambers/4", "", 404, "no chamber 4; ids run from 0 to 3");
    row("negative id", "GET", "/chambers/-1", "", 404, "no chamber -1; ids run from 0 to 3");
    row("id with a sign", "GET", "/chambers/+1", "", 404, "no chamber +1; ids run from 0 to 3");
    row("id that is no number", "GET", "/chambers/abc", "", 404, "no chamber abc; ids run from 0 to 3");
    row("unknown part of a chamber", "GET", "/chambers/0/state", "", 404, "no resource /chambers/0/state");
    row("POST on the list", "POST", "/chambers", "", 405, "POST is not allowed on /chambers; allowed: GET, HEAD");
    row("unknown method on the page", "FOO", "/", "", 405, "FOO is not allowed on /; allowed: GET, HEAD");
    row("DELETE on a chamber", "DELETE", "/chambers/0", "", 405,
        "DELETE is not allowed on /chambers/0; allowed: GET, HEAD");
    row("PATCH on faults", "PATCH", "/chambers/0/faults", "", 405,
        "PATCH is not allowed on /chambers/0/faults; allowed: GET, HEAD, PUT, DELETE");
    row("online neither true nor false", "PUT", "/chambers/0/online", "maybe", 400, "the body must be true or false");
    row("online as a number", "PUT", "/chambers/0/online", "1", 400, "the body must be true or false");
    row("online empty", "PUT", "/chambers/0/online", "", 400, "the body must be true or false");
    row("malformed faults", "PUT", "/chambers/0/faults", "{\"delayMs\": ", 400,
        "the body must be a JSON object: unterminated object");
    row("faults as an array", "PUT", "/chambers/0/faults", "[1]", 400, "the body must be a JSON object: an array");
    row("rate as a text", "PUT", "/chambers/0/faults", "{\"dropRate\": \"0.3\"}", 400, "dropRate must be a number");
    row("fractional delay", "PUT", "/chambers/0/faults", "{\"delayMs\": 1.5}", 400,
        "delayMs must be a whole number from 0 to 600000");
    row("unknown fault", "PUT", "/chambers/0/faults", "{\"jitter\": 1}", 400,
        "unknown field jitter; known: delayMs, dropRate, errorRate, strayRate");
    row("rates above 1 together", "PUT", "/chambers/0/faults", "{\"dropRate\": 0.7, \"errorRate\": 0.7}", 400,
        "dropRate, errorRate and strayRate must add up to 1 at most");
    row("address that is no number", "GET", "/chambers/0/values/xyz", "", 400,
        "xyz is no reader address: hexadecimal from 0 to 7FFFFFFF");
    row("address above 7FFFFFFF", "GET", "/chambers/0/values/80000000", "", 400,
        "80000000 is no reader address: hexadecimal from 0 to 7FFFFFFF");
    row("unknown address", "GET", "/chambers/0/values/1234", "", 404, "chamber 0 has no value at 0x1234");
    row("value as a text", "PUT", "/chambers/0/values/10", "\"12\"", 400, "the body must be a JSON number or boolean");
    row("write to an unknown address", "PUT", "/chambers/0/values/99", "1", 404,
        "chamber 0 has no writable value at 0x0099");
    row("write to a read-only value", "PUT", "/chambers/1/values/11", "true", 404,
        "chamber 1 has no writable value at 0x0011");
    row("DELETE on a value", "DELETE", "/chambers/0/values/10", "", 405,
        "DELETE is not allowed on /chambers/0/values/10; allowed: GET, HEAD, PUT");
    row("negative offset", "GET", "/chambers?offset=-1", "", 400, "offset must be a whole number from 0");
    row("slave that is no number", "GET", "/chambers?slave=x", "", 400, "slave must be a whole number from 0");
    row("online filter neither true nor false", "GET", "/chambers?online=yes", "", 400, "online must be true or false");
}

// A JSON error naming the problem; nothing changes.
void TestControlApi::badRequests()
{
    QFETCH(QByteArray, method);
    QFETCH(QString, target);
    QFETCH(QByteArray, body);
    QFETCH(int, status);
    QFETCH(QByteArray, error);
    const ControlResponse response = api->handle(request(method, target, body));
    QCOMPARE(response.status, status);
    QCOMPARE(response.contentType, QByteArray("application/json"));
    QCOMPARE(response.body, "{\"error\":\"" + error + "\"}\n");
    QVERIFY(reader->writes.isEmpty());
    QCOMPARE(api->handle(request("GET", "/chambers/0/faults")).body,
             QByteArray("{\"delayMs\":0,\"dropRate\":0,\"errorRate\":0,\"strayRate\":0}\n"));
    if (status == 405)
        QVERIFY(response.headers.value(0).first == "Allow");
}

void TestControlApi::chamberResource()
{
    const ControlResponse tunnelled = api->handle(request("GET", "/chambers/2"));
    QCOMPARE(tunnelled.status, 200);
    QCOMPARE(tunnelled.body, QByteArray("{\"address\":\"127.0.68.3\",\"clients\":0,\"controller\":\"Q3\",\"errors\":0,"
                                        "\"faults\":{\"delayMs\":0,\"dropRate\":0,\"errorRate\":0,\"strayRate\":0},"
                                        "\"id\":2,\"online\":true,\"port\":10001,\"protocol\":\"MODBUS_RTU_TUNNEL\","
                                        "\"requests\":0,\"slave\":5,\"type\":\"VT 4021 Z3\",\"typeId\":60}\n"));
    const QJsonObject modbus = api->describe(3);
    QCOMPARE(modbus.value("protocol").toString(), QStringLiteral("MODBUS_TCP"));
    QCOMPARE(modbus.value("port").toInt(), 15502);
    QVERIFY(modbus.value("slave").isNull());
    QCOMPARE(api->describe(0).value("type").toString(), QStringLiteral("HX 60 Z6"));
    QCOMPARE(api->handle(request("HEAD", "/chambers/0")).status, 200);
}

void TestControlApi::listFilteredAndPaged_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QList<int>>("ids");
    QTest::addColumn<int>("total");
    QTest::newRow("all") << "/chambers" << QList<int>{0, 1, 2, 3} << 4;
    QTest::newRow("address and slave") << "/chambers?address=127.0.68.3&slave=5" << QList<int>{2} << 1;
    QTest::newRow("a slave nobody has") << "/chambers?address=127.0.68.3&slave=6" << QList<int>{} << 0;
    QTest::newRow("protocol in any case") << "/chambers?protocol=tlx" << QList<int>{0, 1} << 2;
    QTest::newRow("text in the type") << "/chambers?q=kbf" << QList<int>{1} << 1;
    QTest::newRow("text in the address") << "/chambers?q=68.4" << QList<int>{3} << 1;
    QTest::newRow("online") << "/chambers?online=true" << QList<int>{0, 1, 2, 3} << 4;
    QTest::newRow("with faults") << "/chambers?faulty=true" << QList<int>{} << 0;
    QTest::newRow("second page of two") << "/chambers?offset=2&limit=2" << QList<int>{2, 3} << 4;
    QTest::newRow("count only") << "/chambers?limit=0" << QList<int>{} << 4;
    QTest::newRow("past the end") << "/chambers?offset=9" << QList<int>{} << 4;
}

void TestControlApi::listFilteredAndPaged()
{
    QFETCH(QString, target);
    QFETCH(QList<int>, ids);
    QFETCH(int, total);
    const ControlResponse response = api->handle(request("GET", target));
    QCOMPARE(response.status, 200);
    QList<int> found;
    for (const QJsonValue& chamber : QJsonDocument::fromJson(response.body).array())
        found << chamber.toObject().value("id").toInt();
    QCOMPARE(found, ids);
    QCOMPARE(response.headers.value(0), qMakePair(QByteArray("X-Total-Count"), QByteArray::number(total)));
}

void TestControlApi::values_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QVariant>("written"); // invalid: nothing
    // A float by its shortest text: 23.3, not 23.299999237060547.
    QTest::newRow("read a float") << QByteArray("GET") << "1001A0F0" << QByteArray()
                                  << QByteArray("{\"address\":\"0x1001A0F0\",\"type\":\"float\",\"value\":23.3}")
                                  << QVariant();
    QTest::newRow("read with 0x, lower case")
        << QByteArray("GET") << "0x1001a0f0" << QByteArray()
        << QByteArray("{\"address\":\"0x1001A0F0\",\"type\":\"float\",\"value\":23.3}") << QVariant();
    QTest::newRow("read an int") << QByteArray("GET") << "10" << QByteArray()
                                 << QByteArray("{\"address\":\"0x0010\",\"type\":\"int\",\"value\":42}") << QVariant();
    QTest::newRow("read a bool") << QByteArray("GET") << "11" << QByteArray()
                                 << QByteArray("{\"address\":\"0x0011\",\"type\":\"bool\",\"value\":true}")
                                 << QVariant();
    QTest::newRow("read an unsigned short")
        << QByteArray("GET") << "20" << QByteArray()
        << QByteArray("{\"address\":\"0x0020\",\"type\":\"ushort\",\"value\":7}") << QVariant();
    // Whole numbers go to the reader as integers, so that large unsigned values keep their bits.
    QTest::newRow("write a whole number")
        << QByteArray("PUT") << "10" << QByteArray("4294967295")
        << QByteArray("{\"address\":\"0x0010\",\"value\":4294967295}") << QVariant(qlonglong(4294967295LL));
    QTest::newRow("write a fraction") << QByteArray("PUT") << "1001A0F0" << QByteArray(" 40.5 ")
                                      << QByteArray("{\"address\":\"0x1001A0F0\",\"value\":40.5}") << QVariant(40.5);
    QTest::newRow("write a boolean") << QByteArray("PUT") << "20" << QByteArray("false")
                                     << QByteArray("{\"address\":\"0x0020\",\"value\":false}") << QVariant(false);
}

void TestControlApi::values()
{
    QFETCH(QByteArray, method);
    QFETCH(QString, address);
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, answer);
    QFETCH(QVariant, written);
    const ControlResponse response = api->handle(request(method, "/chambers/2/values/" + address, body));
    QCOMPARE(response.status, 200);
    QCOMPARE(response.body, answer + '\n');
    QCOMPARE(reader->writes.size(), written.isValid() ? 1 : 0);
    if (written.isValid()) {
        QCOMPARE(reader->writes.at(0).second.userType(), written.userType());
        QCOMPARE(reader->writes.at(0).second, written);
    }
}

// Offline the TLX chamber refuses connections; online it accepts them again.
void TestControlApi::onlineOnTheWire()
{
    const ControlResponse offline = api->handle(request("PUT", "/chambers/1/online", "false"));
    QCOMPARE(offline.status, 200);
    QCOMPARE(QJsonDocument::fromJson(offline.body).object().value("online").toBool(true), false);
    QCOMPARE(api->handle(request("GET", "/chambers/1/online")).body, QByteArray("false\n"));
    QCOMPARE(api->handle(request("GET", "/chambers?online=false")).headers.value(0).second, QByteArray("1"));
    QTcpSocket refused;
    refused.connectToHost(QHostAddress("127.0.68.2"), 9000);
    QVERIFY(!refused.waitForConnected(2000));

    QCOMPARE(api->handle(request("PUT", "/chambers/1/online", "true")).status, 200);
    QTcpSocket accepted;
    accepted.connectToHost(QHostAddress("127.0.68.2"), 9000);
    QVERIFY(accepted.waitForConnected(2000));
}

// A PUT replaces the whole set: what it leaves out is no fault.
void TestControlApi::faultsSetAndCleared()
{
    QCOMPARE(api->handle(request("PUT", "/chambers/0/faults", R"({"delayMs": 5, "dropRate": 0.25})")).body,
             QByteArray("{\"delayMs\":5,\"dropRate\":0.25,\"errorRate\":0,\"strayRate\":0}\n"));
    QCOMPARE(api->handle(request("PUT", "/chambers/0/faults", R"({"errorRate": 0.5})")).body,
             QByteArray("{\"delayMs\":0,\"dropRate\":0,\"errorRate\":0.5,\"strayRate\":0}\n"));
    QCOMPARE(api->handle(request("GET", "/chambers?faulty=true")).headers.value(0).second, QByteArray("1"));
    QCOMPARE(api->handle(request("DELETE", "/chambers/0/faults")).body,
             QByteArray("{\"delayMs\":0,\"dropRate\":0,\"errorRate\":0,\"strayRate\":0}\n"));
    QCOMPARE(api->handle(request("GET", "/chambers?faulty=true")).headers.value(0).second, QByteArray("0"));
}

QByteArray TestControlApi::tlxExchange(const QByteArray& message)
{
    QTcpSocket client;
    client.connectToHost(QHostAddress("127.0.68.1"), 9000);
    if (!client.waitForConnected(2000))
        return "no connection";
    client.write(message);
    static_cast<void>(QTest::qWaitFor([&] { return client.bytesAvailable() > 0; }, 2000));
    return client.readAll();
}

// Two TLX requests, one of them rubbish: both counted, one error, both
// answered no earlier than 20 ms after they came.
void TestControlApi::metricsCountTheWire()
{
    QCOMPARE(tlxExchange("CANIDGetValue:10010010\r\n"),
             QByteArray("41\r\nCANIDGetValue:10010010:Communication OK\r\n"));
    QCOMPARE(tlxExchange("rubbish\r\n"), QByteArray("07\r\nError\r\n"));
    const ControlResponse metrics = api->handle(request("GET", "/metrics"));
    QCOMPARE(metrics.status, 200);
    QCOMPARE(metrics.contentType, QByteArray("text/plain; version=0.0.4; charset=utf-8"));
    const QByteArray text = metrics.body;
    for (const char* line :
         {"zelmor_chambers{protocol=\"TLX\",state=\"online\"} 2\n",
          "zelmor_chambers{protocol=\"MODBUS_TCP\",state=\"offline\"} 0\n",
          "zelmor_chamber_requests_total{protocol=\"TLX\"} 2\n", "zelmor_chamber_errors_total{protocol=\"TLX\"} 1\n",
          "zelmor_chamber_requests_total{protocol=\"MODBUS_RTU_TUNNEL\"} 0\n",
          "zelmor_chamber_faults_total{protocol=\"TLX\",fault=\"drop\"} 0\n",
          "zelmor_chamber_answer_latency_seconds_bucket{protocol=\"TLX\",le=\"0.02\"} 0\n",
          "zelmor_chamber_answer_latency_seconds_bucket{protocol=\"TLX\",le=\"+Inf\"} 2\n",
          "zelmor_chamber_answer_latency_seconds_count{protocol=\"TLX\"} 2\n",
          "# TYPE zelmor_chamber_answer_latency_seconds histogram\n"})
        QVERIFY2(text.contains(line), line);
    QCOMPARE(
        QJsonDocument::fromJson(api->handle(request("GET", "/chambers/0")).body).object().value("requests").toInt(), 2);
}

void TestControlApi::page()
{
    const ControlResponse page = api->handle(request("GET", "/"));
    QCOMPARE(page.status, 200);
    QCOMPARE(page.contentType, QByteArray("text/html; charset=utf-8"));
    QVERIFY(page.body.startsWith("<!DOCTYPE html>"));
    // Nothing is fetched from elsewhere.
    QVERIFY(!page.body.contains("http://") && !page.body.contains("https://"));
}

QTEST_GUILESS_MAIN(TestControlApi)
#include "tst_controlapi.moc"
