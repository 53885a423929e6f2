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

const QByteArray twoTags_ =
    "<?xml version=\"1.0\"?>\n"
    "<script>\n"
    "  <time seconds=\"0\">\n"
    "    <value address=\"0x1A\">20.0</value>\n"
    "  </time>\n"
    "  <time seconds=\"60\">\n"
    "    <value address=\"0x1A\">25.5</value>\n"
    "    <value address=\"0x1B\">7.25</value>\n"
    "  </time>\n"
    "</script>\n";

} // namespace

class TestXmlSimulationReader : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir dir;
    int fileCount = 0;

    QString writeFile(QByteArray const& content)
    {
        QString const path = dir.filePath(QStringLiteral("values%1.xml").arg(++fileCount));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return QString();
        file.write(content);
        return path;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(dir.isValid());
    }

    void readAtTime_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<qint64>("elapsedMs");
        QTest::addColumn<int>("address");
        QTest::addColumn<float>("expected");

        QTest::newRow("first tag at start") << twoTags_ << qint64(0) << 0x1A << 20.0f;
        QTest::newRow("first tag just before 60 s") << twoTags_ << qint64(59999) << 0x1A << 20.0f;
        QTest::newRow("second tag at 60 s") << twoTags_ << qint64(60000) << 0x1A << 25.5f;
        QTest::newRow("last values stay") << twoTags_ << qint64(86400000) << 0x1A << 25.5f;
        QTest::newRow("named only at 60: before") << twoTags_ << qint64(59999) << 0x1B << 0.0f;
        QTest::newRow("named only at 60: from then") << twoTags_ << qint64(60000) << 0x1B << 7.25f;
        QTest::newRow("address not in the file") << twoTags_ << qint64(60000) << 0x1C << 0.0f;
        QTest::newRow("decimal reads the same address") << twoTags_ << qint64(0) << 26 << 20.0f;
        QTest::newRow("before the start") << twoTags_ << qint64(-5000) << 0x1A << 0.0f;

        QByteArray const outOfOrder =
            "<r><time seconds=\"60\"><value address=\"1\">60</value></time>"
            "<time seconds=\"30\"><value address=\"1\">30</value><value address=\"2\">3</value></time></r>";
        QTest::newRow("later tag first: at 45 s nothing") << outOfOrder << qint64(45000) << 1 << 0.0f;
        QTest::newRow("later tag first: hides the earlier") << outOfOrder << qint64(45000) << 2 << 0.0f;
        QTest::newRow("later tag first: at 60 s the file's last") << outOfOrder << qint64(60000) << 1 << 30.0f;

        QByteArray const repeated =
            "<r><time seconds=\"0\"><value address=\"5\">1</value><value address=\"5\">2</value></time></r>";
        QTest::newRow("one address twice in a tag: first wins") << repeated << qint64(0) << 5 << 1.0f;

        QByteArray const addresses =
            "<r><time seconds=\"0\">"
            "<value address=\"26\">1</value>"
            "<value address=\"0X1B\">2</value>"
            "<value address=\"0xff\">3</value>"
            "<value address=\"\">4</value>"
            "<value>5</value>"
            "<value address=\"-7\">6</value>"
            "<value address=\"0x7FFFFFFF\">7</value>"
            "</time></r>";
        QTest::newRow("decimal 26 is hex 1A") << addresses << qint64(0) << 0x1A << 1.0f;
        QTest::newRow("upper-case 0X is no prefix") << addresses << qint64(0) << 0x1B << 0.0f;
        // "0X1B", "" and a missing address all land on 0; the first of them wins
        QTest::newRow("address 0 from 0X1B") << addresses << qint64(0) << 0 << 2.0f;
        QTest::newRow("lower-case hex digits") << addresses << qint64(0) << 255 << 3.0f;
        QTest::newRow("negative decimal address") << addresses << qint64(0) << -7 << 6.0f;
        QTest::newRow("largest hex address") << addresses << qint64(0) << 0x7FFFFFFF << 7.0f;

        QByteArray const types =
            "<r><time seconds=\"0\">"
            "<value address=\"1\">1.5</value>"
            "<value address=\"2\" type=\"\">2.5</value>"
            "<value address=\"3\" type=\"FLOAT\">3.5</value>"
            "<value address=\"4\" type=\"float\">4.5</value>"
            "</time><time seconds=\"10\">"
            "<value address=\"1\" type=\"unit8\">9</value>"
            "<value address=\"2\" type=\"Float\">9</value>"
            "<value address=\"3\" type=\"int\">9</value>"
            "<value address=\"5\" type=\"unit8\">9</value>"
            "</time></r>";
        QTest::newRow("type missing is float") << types << qint64(0) << 1 << 1.5f;
        QTest::newRow("type empty is float") << types << qint64(0) << 2 << 2.5f;
        QTest::newRow("type FLOAT") << types << qint64(0) << 3 << 3.5f;
        QTest::newRow("type float") << types << qint64(0) << 4 << 4.5f;
        QTest::newRow("unit8 falls back to the earlier tag") << types << qint64(10000) << 1 << 1.5f;
        QTest::newRow("mixed-case Float falls back") << types << qint64(10000) << 2 << 2.5f;
        QTest::newRow("int falls back") << types << qint64(10000) << 3 << 3.5f;
        QTest::newRow("unit8 with nothing earlier is 0") << types << qint64(10000) << 5 << 0.0f;

        QByteArray const texts =
            "<r><time seconds=\"0\">"
            "<value address=\"1\">  \n\t 12.75 \n </value>"
            "<value address=\"2\">warm</value>"
            "<value address=\"3\"></value>"
            "<value address=\"4\">1<!-- split -->2.5</value>"
            "<value address=\"5\"><![CDATA[-3.25]]></value>"
            "<value address=\"6\">&#52;&#50;</value>"
            "<value address=\"7\">1e3</value>"
            "<value address=\"8\">1,5</value>"
            "</time></r>";
        QTest::newRow("white space around the number") << texts << qint64(0) << 1 << 12.75f;
        QTest::newRow("text that is no number") << texts << qint64(0) << 2 << 0.0f;
        QTest::newRow("empty text") << texts << qint64(0) << 3 << 0.0f;
        QTest::newRow("text split by a comment is joined") << texts << qint64(0) << 4 << 12.5f;
        QTest::newRow("CDATA") << texts << qint64(0) << 5 << -3.25f;
        QTest::newRow("character references") << texts << qint64(0) << 6 << 42.0f;
        QTest::newRow("exponent") << texts << qint64(0) << 7 << 1000.0f;
        QTest::newRow("decimal comma is no number") << texts << qint64(0) << 8 << 0.0f;

        QByteArray const seconds =
            "<r><time><value address=\"1\">1</value></time>"
            "<time seconds=\"\"><value address=\"2\">2</value></time>"
            "<time seconds=\"soon\"><value address=\"3\">3</value></time>"
            "<time seconds=\"-5\"><value address=\"4\">4</value></time>"
            "<time seconds=\"5\"><value address=\"5\">5</value></time>"
            "<time seconds=\"99999999999\"><value address=\"6\">6</value></time></r>";
        QTest::newRow("seconds missing is 0") << seconds << qint64(0) << 1 << 1.0f;
        QTest::newRow("seconds empty is 0") << seconds << qint64(0) << 2 << 2.0f;
        QTest::newRow("seconds no number is 0") << seconds << qint64(0) << 3 << 3.0f;
        QTest::newRow("negative seconds hold from the start") << seconds << qint64(0) << 4 << 4.0f;
        QTest::newRow("whole seconds only: 4.999 s") << seconds << qint64(4999) << 5 << 0.0f;
        QTest::newRow("whole seconds only: 5 s") << seconds << qint64(5000) << 5 << 5.0f;
        QTest::newRow("seconds beyond 32 bits not reached") << seconds << qint64(86400000) << 6 << 0.0f;

        QByteArray const nesting =
            "<a><b x=\"1\"><c>"
            "<value address=\"9\">99</value>"
            "<time seconds=\"0\"><value address=\"1\">1</value>"
            "  <time seconds=\"10\"><value address=\"1\">2</value></time>"
            "  <value address=\"2\">3</value>"
            "  <other><value address=\"3\">4</value></other>"
            "</time>"
            "<Time seconds=\"0\"><value address=\"4\">5</value></Time>"
            "<n:time xmlns:n=\"urn:x\" seconds=\"0\"><value address=\"5\">6</value></n:time>"
            "</c></b></a>";
        QTest::newRow("time deep in other elements") << nesting << qint64(0) << 1 << 1.0f;
        QTest::newRow("inner time takes over at its seconds") << nesting << qint64(10000) << 1 << 2.0f;
        QTest::newRow("outer time goes on after the inner") << nesting << qint64(0) << 2 << 3.0f;
        QTest::newRow("value inside another element of a time") << nesting << qint64(0) << 3 << 4.0f;
        QTest::newRow("value outside any time is ignored") << nesting << qint64(0) << 9 << 0.0f;
        QTest::newRow("element names are case-sensitive") << nesting << qint64(0) << 4 << 0.0f;
        QTest::newRow("qualified name must be time") << nesting << qint64(0) << 5 << 0.0f;

        // A value in a value: the inner one ends the outer, whose end then
        // finds nothing to close.
        QByteArray const valueInValue =
            "<r><time seconds=\"0\"><value address=\"1\">1<value address=\"2\">2</value>7</value>"
            "<value address=\"3\">3</value></time></r>";
        QTest::newRow("value in value: outer is lost") << valueInValue << qint64(0) << 1 << 0.0f;
        QTest::newRow("value in value: inner is kept") << valueInValue << qint64(0) << 2 << 2.0f;
        QTest::newRow("value in value: parsing goes on") << valueInValue << qint64(0) << 3 << 3.0f;

        // Broken documents: what was read before the break stays in force.
        QByteArray const truncated =
            "<r><time seconds=\"0\"><value address=\"1\">1</value></time>"
            "<time seconds=\"10\"><value address=\"1\">2</value><value address=\"2\">5</va";
        QTest::newRow("truncated: earlier tag") << truncated << qint64(0) << 1 << 1.0f;
        QTest::newRow("truncated: open tag's complete value") << truncated << qint64(10000) << 1 << 2.0f;
        QTest::newRow("truncated: unfinished value") << truncated << qint64(10000) << 2 << 0.0f;

        QByteArray const mismatched =
            "<r><time seconds=\"0\"><value address=\"1\">1</value></time>"
            "<time seconds=\"5\"><value address=\"1\">2</value></oops>"
            "<time seconds=\"6\"><value address=\"1\">3</value></time></r>";
        QTest::newRow("mismatched end: before the break") << mismatched << qint64(5000) << 1 << 2.0f;
        QTest::newRow("mismatched end: nothing after it") << mismatched << qint64(6000) << 1 << 2.0f;

        QByteArray const twoRoots =
            "<r><time seconds=\"0\"><value address=\"1\">1</value></time></r>"
            "<r><time seconds=\"0\"><value address=\"1\">2</value></time></r>";
        QTest::newRow("second root is not read") << twoRoots << qint64(0) << 1 << 1.0f;

        QTest::newRow("empty file") << QByteArray() << qint64(0) << 1 << 0.0f;
        QTest::newRow("not XML") << QByteArray("20.0 at 0x1A\n") << qint64(0) << 0x1A << 0.0f;
        QTest::newRow("binary garbage") << QByteArray("\x00\xff\xfe<time\x01", 9) << qint64(0) << 0 << 0.0f;
    }

    void readAtTime()
    {
        QFETCH(QByteArray, document);
        QFETCH(qint64, elapsedMs);
        QFETCH(int, address);
        QFETCH(float, expected);

        QString const path = writeFile(document);
        QVERIFY(!path.isEmpty());
        SteppedClockReader reader(path);
        reader.setElapsedMs(elapsedMs);

        QVariant const value = reader.read(address);
        QCOMPARE(value.userType(), int(QMetaType::Float));
        QCOMPARE(value.toFloat(), expected);
        QCOMPARE(reader.getType(address), value);
    }

    void fileThatCannotBeRead_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing file") << dir.filePath(QStringLiteral("absent.xml"));
        QTest::newRow("missing folder") << dir.filePath(QStringLiteral("absent/values.xml"));
        QTest::newRow("folder") << dir.path();
        QTest::newRow("empty path") << QString();
    }

    void fileThatCannotBeRead()
    {
        QFETCH(QString, path);
        if (path.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, "QFSFileEngine::open: No file name specified");
        SteppedClockReader reader(path);
        for (qint64 elapsed : {qint64(0), qint64(3600000)}) {
            reader.setElapsedMs(elapsed);
            for (int address : {0, 0x1A, -1}) {
                QCOMPARE(reader.read(address), QVariant(0.0f));
                QCOMPARE(reader.getType(address), QVariant(0.0f));
            }
        }
    }

    void writeIsTakenWithoutEffect_data()
    {
        QTest::addColumn<int>("address");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<float>("expected");
        QTest::newRow("address in the file") << 0x1A << QVariant(99.0f) << 20.0f;
        QTest::newRow("address not in the file") << 0x30 << QVariant(5) << 0.0f;
        QTest::newRow("text") << 0x1A << QVariant(QStringLiteral("hot")) << 20.0f;
        QTest::newRow("invalid value") << 0x1A << QVariant() << 20.0f;
    }

    void writeIsTakenWithoutEffect()
    {
        QFETCH(int, address);
        QFETCH(QVariant, value);
        QFETCH(float, expected);

        SteppedClockReader reader(writeFile(twoTags_));
        QVERIFY(reader.write(address, value));
        QCOMPARE(reader.read(address), QVariant(expected));
    }

    // The script runs on the real clock from construction on.
    void scriptRunsOnTheWallClock()
    {
        QString const path = writeFile(
            "<r><time seconds=\"0\"><value address=\"1\">1</value></time>"
            "<time seconds=\"1\"><value address=\"1\">2</value></time></r>");
        QElapsedTimer elapsed;
        elapsed.start();
        XmlSimulationReader reader(path);
        QVariant const first = reader.read(1);
        if (elapsed.elapsed() < 1000)
            QCOMPARE(first, QVariant(1.0f));
        QTRY_COMPARE_WITH_TIMEOUT(reader.read(1), QVariant(2.0f), 5000);
        QVERIFY2(elapsed.elapsed() >= 1000, qPrintable(QString::number(elapsed.elapsed())));
    }

    void largeFile_data()
    {
        QTest::addColumn<int>("tagCount");
        QTest::newRow("10000 tags") << 10000;
    }

    // Tag i holds address 1 = i; address 2 is named only by the first tag and
    // address 3 by every hundredth, so reads walk back across many tags.
    void largeFile()
    {
        QFETCH(int, tagCount);

        QByteArray document = "<script>\n";
        document.reserve(tagCount * 120);
        for (int i = 0; i < tagCount; ++i) {
            document += "<time seconds=\"" + QByteArray::number(i) + "\">";
            document += "<value address=\"0x1\">" + QByteArray::number(i) + "</value>";
            if (i == 0)
                document += "<value address=\"2\">-1</value>";
            if (i % 100 == 0)
                document += "<value address=\"3\">" + QByteArray::number(i / 100) + "</value>";
            document += "</time>\n";
        }
        document += "</script>\n";
        QString const path = writeFile(document);

        QElapsedTimer timer;
        timer.start();
        SteppedClockReader reader(path);
        qint64 const parseMs = timer.elapsed();

        reader.setElapsedMs(qint64(tagCount - 1) * 1000);
        QCOMPARE(reader.read(1), QVariant(float(tagCount - 1)));
        QCOMPARE(reader.read(2), QVariant(-1.0f));
        QCOMPARE(reader.read(3), QVariant(float((tagCount - 1) / 100)));
        QCOMPARE(reader.read(4), QVariant(0.0f));

        reader.setElapsedMs(5000500);
        QCOMPARE(reader.read(1), QVariant(5000.0f));
        QCOMPARE(reader.read(3), QVariant(50.0f));
        reader.setElapsedMs(5099999);
        QCOMPARE(reader.read(3), QVariant(50.0f));
        reader.setElapsedMs(0);
        QCOMPARE(reader.read(1), QVariant(0.0f));
        QCOMPARE(reader.read(2), QVariant(-1.0f));

        // A read at the end of the script walks every tag.
        reader.setElapsedMs(qint64(tagCount) * 1000);
        int const reads = 100;
        timer.restart();
        for (int i = 0; i < reads; ++i)
            reader.read(2);
        qint64 const readUs = timer.nsecsElapsed() / 1000 / reads;
        qInfo("%d tags, %lld bytes: parse %lld ms, read at the end %lld us",
              tagCount, qint64(document.size()), parseMs, readUs);
    }
};

QTEST_GUILESS_MAIN(TestXmlSimulationReader)
#include "tst_xmlsimulationreader.moc"
