// The real chamber-simulator executable on the sample catalogue, spoken to
// over real sockets on this binary's own loopback addresses 127.0.57.x.

#include "support/SampleCatalogue.h"
#include "support/SimulatorProcess.h"
#include "support/TestDatabase.h"
#include "support/TlxClient.h"

#include <QElapsedTimer>
#include <QNetworkDatagram>
#include <QUdpSocket>
#include <QtTest>

#include <cmath>
#include <map>
#include <memory>

#include <sys/resource.h>

using zelmor::testsupport::SimulatorProcess;
using zelmor::testsupport::TestDatabase;
using zelmor::testsupport::TlxClient;

namespace {

constexpr qint64 answerDelayNs = 20 * 1000 * 1000;
QByteArray const linkTest = "CANIDGetValue:10010010\r\n";
QByteArray const linkAnswer = "41\r\nCANIDGetValue:10010010:Communication OK\r\n";
QByteArray const error = "07\r\nError\r\n";
QByteArray const readingDefault = "Reading database in default folders\r\n";

QByteArray const usage = "Usage: \n"
                         " [-iXXXX] XXXX=IPAddress\n"
                         " [-pXXXX] XXXX=Internet Port\n"
                         " [tlx] creates a TLX chamber\n"
                         " [kv2] creates a TLX chamber\n"
                         " [-mXXX] creates a chamber based on the database id XXX\n"
                         " [-nXXX] creates XXX instances of chambers\n"
                         " [-xXXX] Defines the value file\n";

// Type 1: its process values take in their set points; the set point of
// its fan speed is its own process value.
QByteArray const type1Signals = "Adding Signal PV_Temperature\r\n"
                                "Adding Signal PV_Humidity\r\n"
                                "Adding Signal SP_Fan_Speed\r\n"
                                "Adding Signal PV_Door_Open\r\n"
                                "Adding Signal PV_Water_Tank_Empty\r\n"
                                "Adding Signal PV_Collective_Alarm\r\n"
                                "Adding Signal PV_Operating_Hours\r\n"
                                "Adding Signal PV_Compressor_Stage\r\n"
                                "Adding Signal PV_Heating_Output\r\n";
QByteArray const type9Signals = "Adding Signal PV_Temperature\r\n"
                                "Adding Signal PV_Humidity\r\n"
                                "Adding Signal PV_Door_Open\r\n"
                                "Adding Signal PV_Collective_Alarm\r\n"
                                "Adding Signal PV_Illuminance_Top\r\n"
                                "Adding Signal PV_Illuminance_Bottom\r\n"
                                "Adding Signal PV_Light_Dose\r\n"
                                "Adding Signal PV_UV_Irradiance\r\n"
                                "Adding Signal PV_UV_Dose\r\n"
                                "Adding Signal PV_Dew_Point\r\n";

QString address(int host)
{
    return QStringLiteral("127.0.57.%1").arg(host);
}

QByteArray startLine(QByteArray const& typeName, int host)
{
    return "Start TLX simulation " + typeName + " on " + address(host).toLatin1() + ":9000\r\n";
}

// The chambers shared by the wire tests: host -> arguments. Host 1 is only
// read, so that its values stay at their defaults; host 5 takes the writes.
std::map<int, QStringList> const sharedChambers = {
    {1, {"tlx", "-i127.0.57.1"}},
    {2, {"-i127.0.57.2"}},
    {3, {"-m12", "-i127.0.57.3"}},
    {5, {"-i127.0.57.5", "tlx"}},
};

} // namespace

class TestChamberSimulatorEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void reads_data();
    void reads();
    void writes_data();
    void writes();
    void processValueFollowsTheLag();
    void eachReadIsARequestOfItsOwn_data();
    void eachReadIsARequestOfItsOwn();
    void newestClientWins();
    void discovery_data();
    void discovery();

    void commandLine_data();
    void commandLine();
    void startsWithoutDisplayAndRaisesTheFileLimit();

private:
    TlxClient& client(int host);
    void checkExchanges(int host, QList<QByteArrayList> const& exchanges);

    TestDatabase databases;
    QString catalogue;
    std::map<int, std::unique_ptr<SimulatorProcess>> chambers;
    std::map<int, std::unique_ptr<TlxClient>> clients;
    QElapsedTimer sinceStart;
    qint64 host5StartedMs = 0;
    qint64 host5StartLineMs = 0;
};

void TestChamberSimulatorEndToEnd::initTestCase()
{
    QVERIFY2(QFile::exists(SimulatorProcess::executable()), qPrintable(SimulatorProcess::executable()));
    catalogue = zelmor::testsupport::createSampleCatalogue(databases);
    QVERIFY2(!catalogue.isEmpty(), qPrintable(databases.lastError()));
    sinceStart.start();
    for (auto const& [host, arguments] : sharedChambers) {
        auto& simulator = chambers[host];
        simulator = std::make_unique<SimulatorProcess>();
        QVERIFY(simulator->installCatalogue(catalogue));
        if (host == 5)
            host5StartedMs = sinceStart.elapsed();
        simulator->start(arguments);
        QVERIFY2(simulator->waitForOutput("Start TLX simulation"), simulator->standardError().constData());
        if (host == 5)
            host5StartLineMs = sinceStart.elapsed();
    }
}

TlxClient& TestChamberSimulatorEndToEnd::client(int host)
{
    auto& client = clients[host];
    if (!client || client->socket().state() != QAbstractSocket::ConnectedState) {
        client = std::make_unique<TlxClient>();
        client->connectTo(address(host));
    }
    return *client;
}

// Each exchange: a request and the exact framed answer, never earlier than 20 ms.
void TestChamberSimulatorEndToEnd::checkExchanges(int host, QList<QByteArrayList> const& exchanges)
{
    TlxClient& tlx = client(host);
    QCOMPARE(tlx.socket().state(), QAbstractSocket::ConnectedState);
    for (QByteArrayList const& exchange : exchanges) {
        TlxClient::Answer const answer = tlx.request(exchange.at(0));
        QCOMPARE(answer.frame, exchange.at(1));
        QVERIFY2(answer.elapsedNs >= answerDelayNs, qPrintable(QString::number(answer.elapsedNs)));
    }
}

void TestChamberSimulatorEndToEnd::reads_data()
{
    QTest::addColumn<int>("host");
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("answer");

    QTest::newRow("link test") << 1 << linkTest << linkAnswer;
    QTest::newRow("float process value") << 1 << QByteArray("CANIDGetValue:11400080\r\n")
                                         << QByteArray("43\r\nCANIDGetValue:11400080:23.299999237060547\r\n");
    // The set point's own read address answers with the process value's set side.
    QTest::newRow("float set point") << 1 << QByteArray("CANIDGetValue:11400180\r\n")
                                     << QByteArray("43\r\nCANIDGetValue:11400180:23.299999237060547\r\n");
    QTest::newRow("float set point, program register")
        << 1 << QByteArray("CANIDGetValue:11400281\r\n") << QByteArray("27\r\nCANIDGetValue:11400281:22\r\n");
    // An unsigned char value prints as the character of its code: 42 is '*'.
    QTest::newRow("unsigned char starts at 42") << 1 << QByteArray("CANIDGetValue:11400300\r\n")
                                                << QByteArray("26\r\nCANIDGetValue:11400300:*\r\n");
    QTest::newRow("unsigned short of a boolean unit") << 1 << QByteArray("CANIDGetValue:11500010\r\n")
                                                      << QByteArray("26\r\nCANIDGetValue:11500010:1\r\n");
    QTest::newRow("bool") << 1 << QByteArray("CANIDGetValue:11500020\r\n")
                          << QByteArray("30\r\nCANIDGetValue:11500020:false\r\n");
    QTest::newRow("unsigned int") << 1 << QByteArray("CANIDGetValue:11600000\r\n")
                                  << QByteArray("27\r\nCANIDGetValue:11600000:42\r\n");
    QTest::newRow("short") << 1 << QByteArray("CANIDGetValue:11600002\r\n")
                           << QByteArray("27\r\nCANIDGetValue:11600002:42\r\n");
    QTest::newRow("int of a percentage") << 1 << QByteArray("CANIDGetValue:11600004\r\n")
                                         << QByteArray("27\r\nCANIDGetValue:11600004:50\r\n");
    QTest::newRow("array register, no signal type") << 1 << QByteArray("CANIDGetValue:11600010\r\n")
                                                    << QByteArray("27\r\nCANIDGetValue:11600010:42\r\n");
    QTest::newRow("control word int") << 1 << QByteArray("CANIDGetValue:11700000\r\n")
                                      << QByteArray("26\r\nCANIDGetValue:11700000:0\r\n");
    QTest::newRow("control word unsigned short") << 1 << QByteArray("CANIDGetValue:11700006\r\n")
                                                 << QByteArray("26\r\nCANIDGetValue:11700006:0\r\n");
    QTest::newRow("control word unsigned int") << 1 << QByteArray("CANIDGetValue:11700010\r\n")
                                               << QByteArray("26\r\nCANIDGetValue:11700010:0\r\n");
    QTest::newRow("control bit gets no value") << 1 << QByteArray("CANIDGetValue:11700008\r\n") << error;
    QTest::newRow("control word without write register") << 1 << QByteArray("CANIDGetValue:11700002\r\n") << error;
    QTest::newRow("unknown identifier") << 1 << QByteArray("CANIDGetValue:12345678\r\n") << error;
    QTest::newRow("80000000 is address 0, unknown here") << 1 << QByteArray("CANIDGetValue:80000000\r\n") << error;
    QTest::newRow("keyword in lower case") << 1 << QByteArray("canidgetvalue:10010010\r\n") << error;
    QTest::newRow("seven digits") << 1 << QByteArray("CANIDGetValue:1140008\r\n") << error;
    QTest::newRow("nine digits") << 1 << QByteArray("CANIDGetValue:114000800\r\n") << error;
    QTest::newRow("line feed alone") << 1 << QByteArray("CANIDGetValue:11400080\n") << error;
    QTest::newRow("rubbish ahead") << 1 << QByteArray("xCANIDGetValue:11400080\r\n") << error;
    QTest::newRow("rubbish behind") << 1 << QByteArray("CANIDGetValue:11600000\r\nrubbish")
                                    << QByteArray("27\r\nCANIDGetValue:11600000:42\r\n");

    QTest::newRow("default type: kLUX") << 2 << QByteArray("CANIDGetValue:11400090\r\n")
                                        << QByteArray("27\r\nCANIDGetValue:11400090:50\r\n");
    QTest::newRow("default type: Mluxh unsigned int") << 2 << QByteArray("CANIDGetValue:11400092\r\n")
                                                      << QByteArray("27\r\nCANIDGetValue:11400092:22\r\n");
    QTest::newRow("default type: W/m2") << 2 << QByteArray("CANIDGetValue:11400093\r\n")
                                        << QByteArray("27\r\nCANIDGetValue:11400093:22\r\n");

    QTest::newRow("lower-case hex repeated as sent") << 3 << QByteArray("CANIDGetValue:114000a0\r\n")
                                                     << QByteArray("27\r\nCANIDGetValue:114000a0:10\r\n");
    QTest::newRow("volt") << 3 << QByteArray("CANIDGetValue:114000B0\r\n")
                          << QByteArray("29\r\nCANIDGetValue:114000B0:23.5\r\n");
    // C0000010 overflows to 0 in the catalogue and on the wire alike.
    QTest::newRow("identifier above 7FFFFFFF") << 3 << QByteArray("CANIDGetValue:C0000010\r\n")
                                               << QByteArray("27\r\nCANIDGetValue:C0000010:42\r\n");
    QTest::newRow("80000000 reaches address 0") << 3 << QByteArray("CANIDGetValue:80000000\r\n")
                                                << QByteArray("27\r\nCANIDGetValue:80000000:42\r\n");
    QTest::newRow("ffffffff reaches address 0") << 3 << QByteArray("CANIDGetValue:ffffffff\r\n")
                                                << QByteArray("27\r\nCANIDGetValue:ffffffff:42\r\n");
}

void TestChamberSimulatorEndToEnd::reads()
{
    QFETCH(int, host);
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, answer);
    checkExchanges(host, {{request, answer}});
}

void TestChamberSimulatorEndToEnd::writes_data()
{
    QTest::addColumn<QList<QByteArrayList>>("exchanges");

    auto echo = [](QByteArray const& length, QByteArray const& request) { return length + "\r\n" + request; };
    QTest::newRow("bool set point")
        << QList<QByteArrayList>{{"CANIDWriteValue:11500030:1\r\n", echo("28", "CANIDWriteValue:11500030:1\r\n")},
                                 {"CANIDGetValue:11500030\r\n", "29\r\nCANIDGetValue:11500030:true\r\n"}};
    QTest::newRow("unsigned char")
        << QList<QByteArrayList>{{"CANIDWriteValue:11400300:77\r\n", echo("29", "CANIDWriteValue:11400300:77\r\n")},
                                 {"CANIDGetValue:11400300\r\n", "26\r\nCANIDGetValue:11400300:M\r\n"}};
    QTest::newRow("control word int, at once")
        << QList<QByteArrayList>{{"CANIDWriteValue:11700000:5\r\n", echo("28", "CANIDWriteValue:11700000:5\r\n")},
                                 {"CANIDGetValue:11700000\r\n", "26\r\nCANIDGetValue:11700000:5\r\n"}};
    QTest::newRow("control word unsigned short keeps the low bits")
        << QList<QByteArrayList>{
               {"CANIDWriteValue:11700006:65537\r\n", echo("32", "CANIDWriteValue:11700006:65537\r\n")},
               {"CANIDGetValue:11700006\r\n", "26\r\nCANIDGetValue:11700006:1\r\n"}};
    QTest::newRow("control word unsigned int wraps")
        << QList<QByteArrayList>{{"CANIDWriteValue:11700010:-1\r\n", echo("29", "CANIDWriteValue:11700010:-1\r\n")},
                                 {"CANIDGetValue:11700010\r\n", "35\r\nCANIDGetValue:11700010:4294967295\r\n"}};
    // The humidity set point's manual register is a second write address of
    // its process value: known to getType, written through to the first.
    QTest::newRow("float set point through an alias")
        << QList<QByteArrayList>{{"CANIDWriteValue:11400181:55\r\n", echo("29", "CANIDWriteValue:11400181:55\r\n")},
                                 {"CANIDGetValue:11400181\r\n", "27\r\nCANIDGetValue:11400181:55\r\n"},
                                 {"CANIDGetValue:11400281\r\n", "27\r\nCANIDGetValue:11400281:55\r\n"}};
    QTest::newRow("float first write address is unknown to a write")
        << QList<QByteArrayList>{{"CANIDWriteValue:11400280:40\r\n", error}};
    QTest::newRow("float process value") << QList<QByteArrayList>{{"CANIDWriteValue:11400080:40\r\n", error}};
    QTest::newRow("read-only bool refuses, echoed all the same")
        << QList<QByteArrayList>{{"CANIDWriteValue:11500020:1\r\n", echo("28", "CANIDWriteValue:11500020:1\r\n")},
                                 {"CANIDGetValue:11500020\r\n", "30\r\nCANIDGetValue:11500020:false\r\n"}};
    QTest::newRow("unknown identifier") << QList<QByteArrayList>{{"CANIDWriteValue:12345678:1\r\n", error}};
    QTest::newRow("empty value") << QList<QByteArrayList>{{"CANIDWriteValue:11700000:\r\n", error}};
    // The value runs up to the last CR LF: it isn't a number, and reads as 0.
    QByteArray const twoWrites = "CANIDWriteValue:11700000:6\r\nCANIDWriteValue:11700000:7\r\n";
    QTest::newRow("two writes in one piece")
        << QList<QByteArrayList>{{twoWrites, echo("56", twoWrites)},
                                 {"CANIDGetValue:11700000\r\n", "26\r\nCANIDGetValue:11700000:0\r\n"}};
}

void TestChamberSimulatorEndToEnd::writes()
{
    QFETCH(QList<QByteArrayList>, exchanges);
    checkExchanges(5, exchanges);
}

// After a set point write the process value moves along a first-order lag
// with the time constant of its unit (360.3 s for °C). Its clock ticks in
// whole seconds and counts from the chamber's construction, since the value
// was at rest until the write.
void TestChamberSimulatorEndToEnd::processValueFollowsTheLag()
{
    checkExchanges(5, {{"CANIDWriteValue:11400180:40\r\n", "29\r\nCANIDWriteValue:11400180:40\r\n"},
                       {"CANIDGetValue:11400180\r\n", "27\r\nCANIDGetValue:11400180:40\r\n"}});
    QByteArray const atRest = "43\r\nCANIDGetValue:11400080:23.299999237060547\r\n";
    TlxClient& tlx = client(5);
    QByteArray frame = atRest;
    qint64 sentMs = 0;
    QTRY_VERIFY_WITH_TIMEOUT((sentMs = sinceStart.elapsed(), frame = tlx.request("CANIDGetValue:11400080\r\n").frame,
                              frame != atRest),
                             15000);
    qint64 const answeredMs = sinceStart.elapsed();
    QVERIFY2(frame.mid(4).startsWith("CANIDGetValue:11400080:"), frame.constData());
    float const value = frame.mid(4 + 23).trimmed().toFloat();

    auto lagged = [](double seconds) { return 40.0 - 16.7 * std::exp(-seconds / 360.3); };
    // The last step was taken less than a second before the read.
    double const fewest = (sentMs - 1000 - host5StartLineMs) / 1000.0;
    double const most = (answeredMs - host5StartedMs) / 1000.0;
    QVERIFY2(value >= lagged(fewest) - 1e-4 && value <= lagged(most) + 1e-4,
             qPrintable(QStringLiteral("%1 not within %2..%3").arg(value).arg(lagged(fewest)).arg(lagged(most))));
}

void TestChamberSimulatorEndToEnd::eachReadIsARequestOfItsOwn_data()
{
    QTest::addColumn<QByteArrayList>("pieces");
    QTest::addColumn<QByteArrayList>("answers");

    QTest::newRow("split over two segments")
        << QByteArrayList{"CANIDGetVa", "lue:11600000\r\n"} << QByteArrayList{error, error};
    // Of two reads in one piece only the first is answered; the link test behind proves it.
    QTest::newRow("two reads in one piece")
        << QByteArrayList{"CANIDGetValue:11600000\r\nCANIDGetValue:11600002\r\n", linkTest}
        << QByteArrayList{"27\r\nCANIDGetValue:11600000:42\r\n", linkAnswer};
    QTest::newRow("NUL inside the identifier")
        << QByteArrayList{QByteArray("CANIDGetValue:1160\0" "0000\r\n", 25)} << QByteArrayList{error};
    QTest::newRow("NUL behind the line")
        << QByteArrayList{QByteArray("CANIDGetValue:10010010\r\n\0junk", 29)} << QByteArrayList{linkAnswer};
    QTest::newRow("NUL in front")
        << QByteArrayList{QByteArray("\0CANIDGetValue:10010010\r\n", 25)} << QByteArrayList{error};
}

void TestChamberSimulatorEndToEnd::eachReadIsARequestOfItsOwn()
{
    QFETCH(QByteArrayList, pieces);
    QFETCH(QByteArrayList, answers);
    QList<QByteArrayList> exchanges;
    for (int index = 0; index < pieces.size(); ++index)
        exchanges.append({pieces.at(index), answers.at(index)});
    checkExchanges(5, exchanges);
}

// A second client throws out the first at once, and the answer to the
// first one's request goes to whoever is the client when the 20 ms are up.
// When the request is read first and the connection within the 20 ms, the
// new client gets the answer; the scheduler may order the two otherwise,
// so a few attempts are allowed, but no answer may ever go to both.
void TestChamberSimulatorEndToEnd::newestClientWins()
{
    bool newestGotIt = false;
    for (int attempt = 0; attempt < 10 && !newestGotIt; ++attempt) {
        TlxClient first;
        QVERIFY(first.connectTo(address(5)));
        QCOMPARE(first.request(linkTest).frame, linkAnswer);
        QVERIFY(first.send("CANIDGetValue:11600000\r\n"));
        // A short gap, so that the request is read before the connection comes.
        QTest::qWait(3);
        TlxClient second;
        QVERIFY(second.connectTo(address(5)));
        QVERIFY(first.waitForClosed());
        QByteArray const toFirst = first.takeAll();
        QByteArray const toSecond = second.readFrame(200);
        QVERIFY(toFirst.isEmpty() || toSecond.isEmpty());
        newestGotIt = toSecond == "27\r\nCANIDGetValue:11600000:42\r\n";
        // The new client is served as any other.
        QCOMPARE(second.request(linkTest).frame, linkAnswer);
    }
    QVERIFY(newestGotIt);
    clients.erase(5);
}

void TestChamberSimulatorEndToEnd::discovery_data()
{
    QTest::addColumn<QByteArray>("datagram");
    QTest::addColumn<QByteArray>("printed");

    QTest::newRow("any text") << QByteArray("hello") << QByteArray("hello");
    QTest::newRow("empty") << QByteArray() << QByteArray();
    QTest::newRow("printed up to NUL") << QByteArray("ab\0cd", 5) << QByteArray("ab");
}

void TestChamberSimulatorEndToEnd::discovery()
{
    QFETCH(QByteArray, datagram);
    QFETCH(QByteArray, printed);
    QUdpSocket socket;
    QVERIFY(socket.bind(QHostAddress(address(200)), 0));
    QVERIFY(socket.writeDatagram(datagram, QHostAddress(address(5)), 9001) == datagram.size());
    QVERIFY(socket.waitForReadyRead(5000));
    QNetworkDatagram const reply = socket.receiveDatagram();
    // No interface but the loopback carries the address: the hardware address is zeros.
    QByteArray const expected = "IP:127.0.57.5 Port:9001 MAC:00:00:00:00:00:00\tChambertype:HX 60 Z6\t"
                                "Controllertype:TLX\tCOMType:TLXDirect\tProgramController:False\r\n";
    QCOMPARE(reply.data(), expected);
    QCOMPARE(reply.senderAddress(), QHostAddress(address(5)));
    QCOMPARE(reply.senderPort(), 9001);

    QByteArray const sender = address(200).toLatin1() + ':' + QByteArray::number(socket.localPort());
    QByteArray const lines = "UDP Request " + printed + " from " + sender + "\r\nSender:" + sender + " \r\n"
                             + expected + "\r\n";
    QVERIFY2(chambers.at(5)->waitForOutput(lines, 5000), chambers.at(5)->standardOutput().constData());
}

void TestChamberSimulatorEndToEnd::commandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("catalogueAt");  // relative to the working folder; empty: none
    // QSettings keeps the group "General" under the section name "[%General]".
    QTest::addColumn<QByteArray>("ini"); // "%1" stands for the catalogue's absolute path
    QTest::addColumn<bool>("keepsRunning");     // else it ends, with the exit code
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("output");     // all of standard output; "%1" as above
    QTest::addColumn<int>("probeHost"); // a link test there when above 0, an unknown address when below

    QString const inDefault = QStringLiteral("database/configuration.sqlite3");
    QString const elsewhere = QStringLiteral("elsewhere/catalogue.sqlite3");
    QByteArray const noIni;
    // The process folds main's -1 into 255.
    int const notOpened = 255;

    QTest::newRow("-h alone") << QStringList{"-h"} << QString() << noIni << false << 0 << usage << 0;
    QTest::newRow("-h behind others, no database touched")
        << QStringList{"tlx", "-i127.0.57.20", "-n3", "-h"} << QString() << noIni << false << 0 << usage << 0;
    QTest::newRow("-h in front") << QStringList{"-h", "tlx"} << QString() << noIni << false << 0 << usage << 0;
    QTest::newRow("missing database; -help is no -h")
        << QStringList{"-help"} << QString() << noIni << false << notOpened << readingDefault << 0;
    QTest::newRow("bad ini path, even with a default database")
        << QStringList{"tlx", "-i127.0.57.21"} << inDefault
        << QByteArray("[%General]\nConfigDatabasePath=/nonexistent-zelmor/catalogue.sqlite3\n") << false << notOpened
        << QByteArray("Reading database /nonexistent-zelmor/catalogue.sqlite3\r\n") << 0;
    QTest::newRow("ini path") << QStringList{"tlx", "-i127.0.57.22"} << elsewhere
                              << QByteArray("[%General]\nConfigDatabasePath=%1\n") << true << 0
                              << "Reading database %1\r\n" + type1Signals + startLine("HX 60 Z6", 22) << 22;
    QTest::newRow("second default folder")
        << QStringList{"tlx", "-i127.0.57.23"} << QStringLiteral("../../../database/configuration.sqlite3") << noIni
        << true << 0 << readingDefault + type1Signals + startLine("HX 60 Z6", 23) << 23;
    QTest::newRow("unknown arguments and -p change nothing")
        << QStringList{"--bogus", "x", "-p4000", "-i127.0.57.24", "-m1"} << inDefault << noIni << true << 0
        << readingDefault + type1Signals + startLine("HX 60 Z6", 24) << 24;
    QTest::newRow("-i texts run together")
        << QStringList{"-i127.0.57", "tlx", "-i.25"} << inDefault << noIni << true << 0
        << readingDefault + type1Signals + startLine("HX 60 Z6", 25) << 25;
    QTest::newRow("-a empty: the default type, single")
        << QStringList{"-a", "-i127.0.57.26"} << inDefault << noIni << true << 0
        << readingDefault + type9Signals + startLine("KBF 240 E6", 26) << 26;
    QTest::newRow("-mtlx is type 0: no chamber")
        << QStringList{"-mtlx", "-i127.0.57.27"} << inDefault << noIni << true << 0 << readingDefault << 0;
    QTest::newRow("-n0: instances, none") << QStringList{"-n0", "-i127.0.57.28"} << inDefault << noIni << true << 0
                                          << readingDefault << 0;
    // The value file reader replaces the catalogue's reader before start();
    // a file that can't be read answers 0 for every address.
    QTest::newRow("-x on a missing value file")
        << QStringList{"tlx", "-i127.0.57.32", "-x/nonexistent-zelmor/values.xml"} << inDefault << noIni << true << 0
        << readingDefault + type1Signals + startLine("HX 60 Z6", 32) << -32;
    QTest::newRow("-n without local address in the subnet")
        << QStringList{"-n5", "tlx", "-i127.0.57.29"} << inDefault << noIni << true << 0 << readingDefault << 0;
    // A wrong key opens; the catalogue then reads nothing, so no type fits.
    QTest::newRow("wrong key: no chamber, no exit")
        << QStringList{"tlx", "-i127.0.57.30"} << QStringLiteral("wrong key") << noIni << true << 0 << readingDefault
        << 0;
}

void TestChamberSimulatorEndToEnd::commandLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, catalogueAt);
    QFETCH(QByteArray, ini);
    QFETCH(bool, keepsRunning);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, output);
    QFETCH(int, probeHost);

    SimulatorProcess simulator;
    QString installed;
    if (catalogueAt == QLatin1String("wrong key")) {
        QString const wrongKey = databases.createEncrypted(QStringLiteral("wrongkey.sqlite3"),
                                                           QStringLiteral("CREATE TABLE t(a);"),
                                                           QStringLiteral("ffeeddccbbaa99887766554433221100"));
        QVERIFY2(!wrongKey.isEmpty(), qPrintable(databases.lastError()));
        QVERIFY(simulator.installCatalogue(wrongKey));
    } else if (!catalogueAt.isEmpty()) {
        QVERIFY(simulator.installCatalogue(catalogue, catalogueAt));
        installed = QDir::cleanPath(simulator.workingDirectory() + QLatin1Char('/') + catalogueAt);
    }
    if (ini.contains("%1"))
        ini = QString::fromUtf8(ini).arg(installed).toUtf8();
    if (!ini.isEmpty())
        QVERIFY(simulator.writeIni(ini));
    if (output.contains("%1"))
        output = QString::fromUtf8(output).arg(installed).toUtf8();

    simulator.start(arguments);
    if (!keepsRunning) {
        QVERIFY(simulator.waitForFinished());
        QCOMPARE(simulator.exitStatus(), QProcess::NormalExit);
        QCOMPARE(simulator.exitCode(), exitCode);
        QCOMPARE(simulator.standardOutput(), output);
        return;
    }
    QVERIFY2(simulator.waitForOutput(output), simulator.standardError().constData());
    if (probeHost > 0) {
        TlxClient tlx;
        QVERIFY(tlx.connectTo(address(probeHost)));
        QCOMPARE(tlx.request(linkTest).frame, linkAnswer);
        output += "Connect TLX simulation \r\n";
    } else if (probeHost < 0) {
        TlxClient tlx;
        QVERIFY(tlx.connectTo(address(-probeHost)));
        QCOMPARE(tlx.request("CANIDGetValue:12345678\r\n").frame, QByteArray("26\r\nCANIDGetValue:12345678:0\r\n"));
        output += "Connect TLX simulation \r\n";
    }
    QVERIFY(simulator.waitUntilIdle());
    QCOMPARE(simulator.standardOutput(), output);
    QVERIFY(!simulator.hasDocumentsFile(QStringLiteral("sqlextract.sql")));
}

// No platform named and no display: the tool picks one that needs none.
// It lifts its own soft limit of open files to the hard limit.
void TestChamberSimulatorEndToEnd::startsWithoutDisplayAndRaisesTheFileLimit()
{
    rlimit original{};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &original), 0);
    if (original.rlim_max <= 256)
        QSKIP("the hard limit of open files is too low to tell");
    rlimit lowered = original;
    lowered.rlim_cur = 256;
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &lowered), 0);

    SimulatorProcess simulator;
    QVERIFY(simulator.installCatalogue(catalogue));
    for (char const* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        simulator.environment().remove(QLatin1String(name));
    simulator.start({"tlx", "-i127.0.57.31"});
    bool const started = simulator.waitForStarted();
    setrlimit(RLIMIT_NOFILE, &original);
    QVERIFY(started);
    QVERIFY2(simulator.waitForOutput(startLine("HX 60 Z6", 31)), simulator.standardError().constData());

    QFile limits(QStringLiteral("/proc/%1/limits").arg(simulator.processId()));
    QVERIFY(limits.open(QIODevice::ReadOnly));
    QByteArrayList fields;
    for (QByteArray const& line : limits.readAll().split('\n')) {
        if (line.startsWith("Max open files"))
            fields = line.simplified().split(' ');
    }
    QCOMPARE(fields.value(3), QByteArray::number(qulonglong(original.rlim_max)));
    QCOMPARE(fields.value(4), QByteArray::number(qulonglong(original.rlim_max)));
}

QTEST_GUILESS_MAIN(TestChamberSimulatorEndToEnd)
#include "tst_chambersimulator_e2e.moc"
