#include "Domain/Types/ProtocolEntry.h"
#include "support/MarkingTranslator.h"

#include <QtTest>

using zelmor::domain::types::ProtocolEntry;
using zelmor::testsupport::MarkingTranslator;

class TestProtocolEntry : public QObject
{
    Q_OBJECT

private slots:
    void translateArgument_data();
    void translateArgument();
    void getDescription_data();
    void getDescription();
};

void TestProtocolEntry::translateArgument_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("expected"); // with every text marked by its context

    QTest::newRow("marked") << "tr(Chamber)"
                            << "[ProtocolEntry] Chamber";
    QTest::newRow("marked, empty") << "tr()"
                                   << "[ProtocolEntry] ";
    QTest::newRow("brackets inside") << "tr(Door (left))"
                                     << "[ProtocolEntry] Door (left)";
    // the brackets reach from the first to the last
    QTest::newRow("two marks") << "tr(a) and tr(b)"
                               << "[ProtocolEntry] a) and tr(b";
    QTest::newRow("line break inside") << "tr(two\nlines)"
                                       << "[ProtocolEntry] two\nlines";
    QTest::newRow("blank after") << "tr(Chamber) "
                                 << "tr(Chamber) ";
    QTest::newRow("blank before") << " tr(Chamber)"
                                  << " tr(Chamber)";
    QTest::newRow("capitals") << "TR(Chamber)"
                              << "TR(Chamber)";
    QTest::newRow("no closing bracket") << "tr(Chamber"
                                        << "tr(Chamber";
    QTest::newRow("plain") << "Chamber"
                           << "Chamber";
    QTest::newRow("empty") << ""
                           << "";
}

void TestProtocolEntry::translateArgument()
{
    QFETCH(QString, argument);
    QFETCH(QString, expected);

    {
        MarkingTranslator marking;
        QCOMPARE(ProtocolEntry::translateArgument(argument), expected);
    }
    // without a translation the text in the brackets stands
    QCOMPARE(ProtocolEntry::translateArgument(argument), QString(expected).remove(QStringLiteral("[ProtocolEntry] ")));
}

void TestProtocolEntry::getDescription_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("expected"); // with every text marked by its context

    QTest::newRow("no arguments") << "Backup started" << QVariantList() << "[ProtocolEntry] Backup started";
    QTest::newRow("plain and marked arguments")
        << "%1 renamed to %2" << QVariantList{QStringLiteral("tr(Climate chamber)"), QStringLiteral("Lab 2")}
        << "[ProtocolEntry] [ProtocolEntry] Climate chamber renamed to Lab 2";
    QTest::newRow("a number") << "Interval set to %1 s" << QVariantList{60} << "[ProtocolEntry] Interval set to 60 s";
    QTest::newRow("placeholders turned round")
        << "%2 of %1" << QVariantList{QStringLiteral("HX 60"), QStringLiteral("tr(Door)")}
        << "[ProtocolEntry] [ProtocolEntry] Door of HX 60";
}

void TestProtocolEntry::getDescription()
{
    QFETCH(QString, description);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, expected);

    const ProtocolEntry entry(QDateTime(QDate(2024, 5, 10), QTime(12, 0)), description, arguments, 3,
                              QStringLiteral("admin"));
    {
        MarkingTranslator marking;
        QCOMPARE(entry.getDescription(), expected);
    }
    QCOMPARE(entry.getDescription(), QString(expected).remove(QStringLiteral("[ProtocolEntry] ")));
}

QTEST_GUILESS_MAIN(TestProtocolEntry)
#include "tst_protocolentry.moc"
