#include "Tools/Simulation/XmlSimulationReader.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using zelmor::simulation::XmlSimulationReader;

namespace {

// The script's clock, moved by the test: reads see the start of the reader
// plus the elapsed time set here.
class SteppedClockReader : public XmlSimulationReader
{
public:
    using XmlSimulationReader::XmlSimulationReader;
    void setElapsedMs(qint64 ms) { elapsedMs = ms; }

protected:
    QDateTime getCurrentDateTime() const override { return getStart().addMSecs(elapsedMs); }

private:
    qint64 elapsedMs = 0;
};

} // namespace

class TestXmlSimulationReader : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir dir;
    int fileCount = 0;

    QString writeFile(const QByteArray& content)
    {
        QFile file(dir.filePath(QStringLiteral("values%1.xml").arg(++fileCount)));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName() : QString();
    }

private slots:
    void readAtTime_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<qint64>("elapsedMs");
        QTest::addColumn<int>("address");
        QTest::addColumn<float>("expected");

        // The tag at 90 s stands before the one at 80 s and cuts it off.
        const QByteArray tags = "<?xml version='1.0'?>\n<script>\n"
                                "  <time seconds='0'><value address='0x1A'>20.0</value></time>\n"
                                "  <time seconds='60'><value address='0x1A'>25.5</value>\n"
                                "    <value address='0x1B'>7.25</value></time>\n"
                                "  <time seconds='90'><value address='0x1C'>90</value></time>\n"
                                "  <time seconds='80'><value address='0x1C'>80</value></time>\n</script>\n";
        QTest::newRow("first tag just before 60 s") << tags << qint64(59999) << 0x1A << 20.0f;
        QTest::newRow("second tag at 60 s") << tags << qint64(60000) << 0x1A << 25.5f;
        QTest::newRow("named only at 60: before") << tags << qint64(59999) << 0x1B << 0.0f;
        QTest::newRow("named only at 60: from then") << tags << qint64(60000) << 0x1B << 7.25f;
        QTest::newRow("later tag first: at 85 s nothing") << tags << qint64(85000) << 0x1C << 0.0f;
        QTest::newRow("later tag first: at 90 s the file's last") << tags << qint64(90000) << 0x1C << 80.0f;

        // Addresses, types and texts; seconds missing or no number are 0.
        const QByteArray values = "<r><time><value address='26'>1</value><value address='26'>9</value>"
                                  "<value address='0X1B'>2</value><value address=''>4</value>"
                                  "<value address='0xff'> \n\t 12.75 \n</value><value address='2'>warm</value>"
                                  "<value address='3' type='FLOAT'>3.5</value></time><time seconds='soon'>"
                                  "<value address='4'>4</value></time><time seconds='10'>"
                                  "<value address='26' type='unit8'>8</value><value address='5' type='unit8'>9"
                                  "</value></time></r>";
        QTest::newRow("decimal 26 is hex 1A, first wins") << values << qint64(0) << 0x1A << 1.0f;
        QTest::newRow("upper-case 0X and empty are 0") << values << qint64(0) << 0 << 2.0f;
        QTest::newRow("hex digits, white space around") << values << qint64(0) << 255 << 12.75f;
        QTest::newRow("text that is no number") << values << qint64(0) << 2 << 0.0f;
        QTest::newRow("type FLOAT") << values << qint64(0) << 3 << 3.5f;
        QTest::newRow("seconds no number") << values << qint64(0) << 4 << 4.0f;
        QTest::newRow("unit8 falls back to the earlier tag") << values << qint64(10000) << 0x1A << 1.0f;
        QTest::newRow("unit8 with nothing earlier is 0") << values << qint64(10000) << 5 << 0.0f;

        // A long script, one tag a second: every read walks the tags passed.
        QByteArray longScript = "<script>";
        for (int i = 0; i < 10000; ++i)
            longScript += "<time seconds='" + QByteArray::number(i) + "'><value address='1'>" + QByteArray::number(i)
                          + "</value></time>";
        longScript += "</script>";
        QTest::newRow("10 000 tags: the last") << longScript << qint64(9999000) << 1 << 9999.0f;
        QTest::newRow("10 000 tags: the middle") << longScript << qint64(5000500) << 1 << 5000.0f;

        const QByteArray nesting = "<a><b x='1'><c><value address='9'>99</value>"
                                   "<time seconds='0'><value address='1'>1</value>"
                                   "  <time seconds='10'><value address='1'>2</value></time>"
                                   "  <value address='2'>3</value></time>"
                                   "<Time seconds='0'><value address='4'>5</value></Time></c></b></a>";
        QTest::newRow("inner time, deep in other elements") << nesting << qint64(10000) << 1 << 2.0f;
        QTest::newRow("outer time goes on after the inner") << nesting << qint64(0) << 2 << 3.0f;
        QTest::newRow("value outside any time is ignored") << nesting << qint64(0) << 9 << 0.0f;
        QTest::newRow("element names are case-sensitive") << nesting << qint64(0) << 4 << 0.0f;

        // Broken documents: what was read before the break stays in force.
        const QByteArray valueInValue = "<r><time seconds='0'><value address='1'>1<value address='2'>2</value>7"
                                        "</value><value address='3'>3</value></time></r>";
        QTest::newRow("value in value: parsing goes on") << valueInValue << qint64(0) << 3 << 3.0f;
        // The open tag at 5 s keeps its complete value; the unfinished one and
        // everything after the mismatched end are lost.
        const QByteArray mismatched = "<r><time seconds='0'><value address='1'>1</value></time>"
                                      "<time seconds='5'><value address='1'>2</value><value address='2'>5</oops>"
                                      "<time seconds='6'><value address='1'>3</value></time></r>";
        QTest::newRow("mismatched end: the open tag's value") << mismatched << qint64(6000) << 1 << 2.0f;
        QTest::newRow("mismatched end: unfinished value") << mismatched << qint64(6000) << 2 << 0.0f;
        QTest::newRow("empty file") << QByteArray("") << qint64(0) << 1 << 0.0f;
        QTest::newRow("missing file") << QByteArray() << qint64(3600000) << 0x1A << 0.0f;
        QTest::newRow("binary garbage") << QByteArray("\x00\xff\xfe<time\x01", 9) << qint64(0) << 0 << 0.0f;
    }

    // Every read answers with a float; getType is the same read; a write is
    // taken and changes nothing.
    void readAtTime()
    {
        QFETCH(QByteArray, document);
        QFETCH(qint64, elapsedMs);
        QFETCH(int, address);
        QFETCH(float, expected);

        const QString path = document.isNull() ? dir.filePath(QStringLiteral("absent.xml")) : writeFile(document);
        QVERIFY(!path.isEmpty());
        SteppedClockReader reader(path);
        reader.setElapsedMs(elapsedMs);
        QCOMPARE(reader.read(address), QVariant(expected));
        QCOMPARE(reader.getType(address), QVariant(expected));
        QVERIFY(reader.write(address, QVariant(99.0f)));
        QCOMPARE(reader.read(address), QVariant(expected));
    }

    // The script runs on the real clock from construction on.
    void scriptRunsOnTheWallClock()
    {
        const QString path = writeFile("<r><time seconds='0'><value address='1'>1</value></time>"
                                       "<time seconds='1'><value address='1'>2</value></time></r>");
        QElapsedTimer elapsed;
        elapsed.start();
        XmlSimulationReader reader(path);
        QTRY_COMPARE_WITH_TIMEOUT(reader.read(1), QVariant(2.0f), 5000);
        QVERIFY2(elapsed.elapsed() >= 1000, qPrintable(QString::number(elapsed.elapsed())));
    }
};

QTEST_GUILESS_MAIN(TestXmlSimulationReader)
#include "tst_xmlsimulationreader.moc"
