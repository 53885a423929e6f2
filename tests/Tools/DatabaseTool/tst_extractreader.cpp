#include "Tools/DatabaseTool/ExtractReader.h"

#include <QtTest>

using zelmor::domain::types::ChamberData;
using zelmor::domain::types::ChamberTypeId;
using zelmor::domain::types::MacAddress;
using zelmor::tools::databasetool::ExtractReader;
namespace types = zelmor::domain::types;
namespace ActivationState = zelmor::domain::types::ActivationState;

namespace {

// Rows as chamber-simulator writes them: a TLX chamber, a Modbus TCP chamber,
// a tunnelled one (protocol 1 behind an XPort converter, 0).
const QString tlxRow = QStringLiteral(
    "INSERT INTO \"chamber\" VALUES(1000,9,9,'666-100000',0,1,'KBF 240 E6 at 10.201.0.1','10.201.0.1',NULL,"
    "'02:00:0A:C9:00:01',0,NULL,NULL,NULL,NULL,NULL,4,-1);");
const QString modbusTcpRow =
    QStringLiteral("INSERT INTO \"chamber\" VALUES(101,247,247,'666-100001',0,1,'VC 7034 Z2','10.206.0.8',NULL,"
                   "'02:00:0A:CE:00:01',0,NULL,NULL,NULL,NULL,NULL,3,-1);");
const QString tunnelledRow = QStringLiteral(
    "INSERT INTO \"chamber\" VALUES(1100,60,60,'666-100100',0,1,'VT 4021 Z3 at 10.205.0.2','10.205.0.1',NULL,"
    "'02:00:0A:CD:00:01',100,NULL,NULL,NULL,NULL,NULL,1,0);");

ChamberData chamber(quint64 type, const QString& serial, const QString& name, const QString& address,
                    const QString& mac, quint8 slave, types::ChamberProtocol protocol, types::Converter converter)
{
    ChamberData data;
    data.chamberTypeId = ChamberTypeId(type, type);
    data.serialNumber = serial;
    data.isArchived = false;
    data.isSubscribed = true;
    data.chamberName = name;
    data.ipAddress = QHostAddress(address);
    data.macAddress = MacAddress(mac);
    data.modbusAddress = slave;
    data.protocol = protocol;
    data.converter = converter;
    return data;
}

} // namespace

class TestExtractReader : public QObject
{
    Q_OBJECT

private slots:
    void simulatorRows_data();
    void simulatorRows();
    void otherForms_data();
    void otherForms();
    void brokenLines_data();
    void brokenLines();
    void wholeExtract();
    void firstBrokenLineStopsTheRead();
};

void TestExtractReader::simulatorRows_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<ChamberData>("chamber");

    QTest::newRow("TLX") << tlxRow
                         << chamber(9, "666-100000", "KBF 240 E6 at 10.201.0.1", "10.201.0.1", "02:00:0a:c9:00:01", 0,
                                    types::TLX, types::NO_CONVERTER);
    QTest::newRow("Modbus TCP") << modbusTcpRow
                                << chamber(247, "666-100001", "VC 7034 Z2", "10.206.0.8", "02:00:0a:ce:00:01", 0,
                                           types::MODBUS_TCP, types::NO_CONVERTER);
    // The chamber sits on the converter's address, not on the one in its name.
    QTest::newRow("tunnelled") << tunnelledRow
                               << chamber(60, "666-100100", "VT 4021 Z3 at 10.205.0.2", "10.205.0.1",
                                          "02:00:0a:cd:00:01", 100, types::MODBUS_RTU, types::XPORT_CONVERTER);
    // Where the interface had no hardware address the simulator writes ''.
    QTest::newRow("no MAC") << QString(tlxRow).replace("'02:00:0A:C9:00:01'", "''")
                            << chamber(9, "666-100000", "KBF 240 E6 at 10.201.0.1", "10.201.0.1", QString(), 0,
                                       types::TLX, types::NO_CONVERTER);
    // Not escaped by the simulator; a quote that is doubled is one quote.
    QTest::newRow("a doubled quote") << QString(modbusTcpRow).replace("'VC 7034 Z2'", "'VC ''7034'' Z2'")
                                     << chamber(247, "666-100001", "VC '7034' Z2", "10.206.0.8", "02:00:0a:ce:00:01", 0,
                                                types::MODBUS_TCP, types::NO_CONVERTER);
}

void TestExtractReader::simulatorRows()
{
    QFETCH(QString, line);
    QFETCH(ChamberData, chamber);

    QString error;
    const ChamberData read = ExtractReader::parseLine(line, &error);
    QCOMPARE(error, QString());
    QCOMPARE(read, chamber);
    // Not in the row: no activation state, no id, no serial settings.
    QCOMPARE(read.activationState, ActivationState::UNKNOWN_STATE);
    QCOMPARE(int(read.chamberId), -1);
    QCOMPARE(int(read.baudRate), -1);
    QCOMPARE(read.comPort, QString());
}

void TestExtractReader::otherForms_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("activation");
    QTest::addColumn<bool>("archived");
    QTest::addColumn<QString>("comPort");
    QTest::addColumn<int>("baudRate");

    QTest::newRow("the table's name unquoted, lower case")
        << QString(tlxRow).replace("INSERT INTO \"chamber\" VALUES(", "insert into chamber values (") << -1 << false
        << QString() << -1;
    QTest::newRow("blanks and a CR") << QString(tlxRow).replace(",", " , ").replace(");", " ) ;\r") << -1 << false
                                     << QString() << -1;
    // As the sqlcipher shell dumps the delivered table: 19 values, "is_active" seventh.
    QTest::newRow("a dumped row") << QStringLiteral("INSERT INTO chamber VALUES(4,9,1009,'SN 7',1,0,1,'Bench',"
                                                    "'10.0.0.4',NULL,NULL,0,'COM3',0,9600,8,1,4,-1);")
                                  << int(ActivationState::ACTIVE) << true << "COM3" << 9600;
}

void TestExtractReader::otherForms()
{
    QFETCH(QString, line);
    QFETCH(int, activation);
    QFETCH(bool, archived);
    QFETCH(QString, comPort);
    QFETCH(int, baudRate);

    QString error;
    const ChamberData read = ExtractReader::parseLine(line, &error);
    QCOMPARE(error, QString());
    QCOMPARE(int(read.activationState), activation);
    QCOMPARE(read.isArchived, archived);
    QCOMPARE(read.comPort, comPort);
    QCOMPARE(int(read.baudRate), baudRate);
    QVERIFY(!read.ipAddress.isNull());
}

void TestExtractReader::brokenLines_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("error");

    QTest::newRow("another table") << QString(tlxRow).replace("\"chamber\"", "\"room\"")
                                   << "not a row of table \"chamber\" (INSERT INTO \"chamber\" VALUES(...);)";
    QTest::newRow("no statement") << "KBF 240 E6 at 10.201.0.1"
                                  << "not a row of table \"chamber\" (INSERT INTO \"chamber\" VALUES(...);)";
    QTest::newRow("a value short") << QString(tlxRow).replace(",4,-1);", ",4);")
                                   << "17 values; a row of the extract has 18 (19 as dumped from the table)";
    QTest::newRow("two values too many") << QString(tlxRow).replace(",4,-1);", ",4,-1,0,0);")
                                         << "20 values; a row of the extract has 18 (19 as dumped from the table)";
    // A name with a quote the simulator didn't double.
    QTest::newRow("a stray quote") << QString(modbusTcpRow).replace("'VC 7034 Z2'", "'VC 7034' Z2'")
                                   << "value 7 is followed by 'Z2','10.206.0.8',NUL' instead of a comma";
    QTest::newRow("an open text") << "INSERT INTO \"chamber\" VALUES(1,9,9,'666-1"
                                  << "the text of value 4 has no closing quote";
    QTest::newRow("cut off") << "INSERT INTO \"chamber\" VALUES(1000,9,9,"
                             << "the row ends after value 3";
    QTest::newRow("no semicolon") << QString(tlxRow).chopped(1) << "the row doesn't end in \");\" after value 18";
    QTest::newRow("a word for a number") << QString(tlxRow).replace("VALUES(1000,9,", "VALUES(1000,nine,")
                                         << "value 2 is no number, text or NULL: 'nine,9,'666-100000','";
    QTest::newRow("a text for a number") << QString(tlxRow).replace("VALUES(1000,9,", "VALUES(1000,'9',")
                                         << "chamber_type_id must be a whole number from 0 to 2147483647, not '9'";
    QTest::newRow("a Modbus address above 255") << QString(tunnelledRow).replace("',100,NULL", "',300,NULL")
                                                << "modbus_address must be a whole number from 0 to 255, not '300'";
    QTest::newRow("a flag of 2") << QString(tlxRow).replace("',0,1,'", "',2,1,'")
                                 << "is_archived must be a whole number from 0 to 1, not '2'";
    QTest::newRow("no address") << QString(tlxRow).replace("'10.201.0.1',NULL", "'COM3:1',NULL")
                                << "ip_v4_address 'COM3:1' is no such address";
    QTest::newRow("an IPv6 address in the IPv4 column")
        << QString(tlxRow).replace("'10.201.0.1',NULL", "'fe80::1',NULL")
        << "ip_v4_address 'fe80::1' is no such address";
    QTest::newRow("no hardware address") << QString(tlxRow).replace("02:00:0A:C9:00:01", "02:00:0A")
                                         << "mac_address '02:00:0A' is no hardware address";
}

void TestExtractReader::brokenLines()
{
    QFETCH(QString, line);
    QFETCH(QString, error);

    QString found;
    const ChamberData read = ExtractReader::parseLine(line, &found);
    QCOMPARE(found, error);
    QCOMPARE(read, ChamberData());
}

void TestExtractReader::wholeExtract()
{
    ExtractReader reader;
    QVERIFY(reader.read(tlxRow + "\n\n" + modbusTcpRow + "\r\n   \n" + tunnelledRow + "\n"));
    const QList<ExtractReader::Row> rows = reader.rows();
    QCOMPARE(rows.size(), 3);
    QCOMPARE(rows.at(0).lineNumber, 1);
    QCOMPARE(rows.at(1).lineNumber, 3);
    QCOMPARE(rows.at(2).lineNumber, 5);
    QCOMPARE(rows.at(2).chamber.modbusAddress, quint8(100));
    QCOMPARE(reader.errorLine(), 0);

    // The simulator's extract of a fleet without addresses is empty.
    QVERIFY(reader.read(QString()));
    QCOMPARE(reader.rows().size(), 0);
}

void TestExtractReader::firstBrokenLineStopsTheRead()
{
    ExtractReader reader;
    QVERIFY(!reader.read(tlxRow + "\n" + modbusTcpRow + "\n" + tunnelledRow.left(40) + "\nrubbish\n"));
    QCOMPARE(reader.errorLine(), 3);
    QCOMPARE(reader.errorText(), "the row ends after value 3");
    QVERIFY(reader.rows().isEmpty());
}

QTEST_GUILESS_MAIN(TestExtractReader)
#include "tst_extractreader.moc"
