#include "Domain/Types/MacAddress.h"

#include <QtTest>

using zelmor::domain::types::MacAddress;

class TestMacAddress : public QObject
{
    Q_OBJECT

private slots:
    void parse_data();
    void parse();
    void otherConstructors();
};

void TestMacAddress::parse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("expectedHex");
    QTest::addColumn<QString>("expectedText");

    QTest::newRow("dashes, upper case") << "00-1A-2B-3C-4D-5E" << QByteArray("001a2b3c4d5e") << "00:1a:2b:3c:4d:5e";
    QTest::newRow("colons, lower case") << "00:1a:2b:3c:4d:5e" << QByteArray("001a2b3c4d5e") << "00:1a:2b:3c:4d:5e";
    QTest::newRow("mixed separators") << "00-1A-2B:3C:4D:5E" << QByteArray() << "";
    QTest::newRow("first part no number") << "G0:11:22:33:44:55" << QByteArray("001122334455") << "00:11:22:33:44:55";
    QTest::newRow("single digits") << "a-b-c-d-e-f" << QByteArray("0a0b0c0d0e0f") << "0a:0b:0c:0d:0e:0f";
    QTest::newRow("three digits keep the low byte")
        << "1FF:2:3:4:5:6" << QByteArray("ff0203040506") << "ff:02:03:04:05:06";
    QTest::newRow("empty parts are dropped")
        << "-00-11--22-33-44-55-" << QByteArray("001122334455") << "00:11:22:33:44:55";
    // six parts at "-" win, and the last one is no number
    QTest::newRow("six dash parts, one with a colon")
        << "00-11-22-33-44-55:66" << QByteArray("001122334400") << "00:11:22:33:44:00";
    QTest::newRow("five parts") << "00:11:22:33:44" << QByteArray() << "";
    QTest::newRow("seven parts") << "00:11:22:33:44:55:66" << QByteArray() << "";
    QTest::newRow("no separators") << "001122334455" << QByteArray() << "";
    QTest::newRow("empty") << "" << QByteArray() << "";
}

void TestMacAddress::parse()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, expectedHex);
    QFETCH(QString, expectedText);

    const MacAddress mac(text);
    QCOMPARE(mac.address.toHex(), expectedHex);
    QCOMPARE(mac.toString(), expectedText);
    QCOMPARE(mac.isValid(), !expectedHex.isEmpty());
    QCOMPARE(MacAddress(text.toUtf8().constData()), mac);
}

void TestMacAddress::otherConstructors()
{
    // bytes are taken as they are, whatever their number
    QCOMPARE(MacAddress(QByteArray::fromHex("0102")).toString(), QStringLiteral("01:02"));
    QVERIFY(MacAddress("00-1A-2B-3C-4D-5E") == MacAddress(QByteArray::fromHex("001a2b3c4d5e")));
    const char* none = nullptr;
    QVERIFY(!MacAddress(none).isValid() && MacAddress(none).toString().isEmpty());
}

QTEST_GUILESS_MAIN(TestMacAddress)
#include "tst_macaddress.moc"
