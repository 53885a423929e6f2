// The faults of one chamber: what a test engineer may set, and the share of
// requests that each fault takes.

#include "Tools/SimulationControl/ChamberFaults.h"

#include <QtTest>

using zelmor::simulation::RequestFault;
using zelmor::simulation::control::ChamberFaults;

Q_DECLARE_METATYPE(ChamberFaults::Settings)

class TestChamberFaults : public QObject
{
    Q_OBJECT

private slots:
    void settings_data();
    void settings();
    void certainFaults_data();
    void certainFaults();
    void sharesWithinBinomialBounds();
};

void TestChamberFaults::settings_data()
{
    QTest::addColumn<int>("delayMs");
    QTest::addColumn<double>("dropRate");
    QTest::addColumn<double>("errorRate");
    QTest::addColumn<double>("strayRate");
    QTest::addColumn<QString>("error"); // empty: taken
    QTest::newRow("nothing") << 0 << 0.0 << 0.0 << 0.0 << QString();
    QTest::newRow("all at their largest") << 600000 << 0.5 << 0.25 << 0.25 << QString();
    QTest::newRow("negative delay") << -1 << 0.0 << 0.0 << 0.0 << "delayMs must lie from 0 to 600000";
    QTest::newRow("delay above ten minutes") << 600001 << 0.0 << 0.0 << 0.0 << "delayMs must lie from 0 to 600000";
    QTest::newRow("rate above 1") << 0 << 1.5 << 0.0 << 0.0
                                  << "dropRate, errorRate and strayRate must each lie from 0 to 1";
    QTest::newRow("negative rate") << 0 << 0.0 << -0.1 << 0.0
                                   << "dropRate, errorRate and strayRate must each lie from 0 to 1";
    QTest::newRow("not a number") << 0 << 0.0 << 0.0 << qQNaN()
                                  << "dropRate, errorRate and strayRate must each lie from 0 to 1";
    QTest::newRow("sum above 1") << 0 << 0.5 << 0.4 << 0.2
                                 << "dropRate, errorRate and strayRate must add up to 1 at most";
}

// A refused setting leaves the former one.
void TestChamberFaults::settings()
{
    QFETCH(int, delayMs);
    QFETCH(double, dropRate);
    QFETCH(double, errorRate);
    QFETCH(double, strayRate);
    QFETCH(QString, error);
    ChamberFaults faults(1);
    QVERIFY(faults.setSettings({7, 0.1, 0, 0}));
    QString message;
    QCOMPARE(faults.setSettings({delayMs, dropRate, errorRate, strayRate}, &message), error.isEmpty());
    QCOMPARE(message, error);
    const ChamberFaults::Settings now = faults.getSettings();
    QCOMPARE(now.delayMs, error.isEmpty() ? delayMs : 7);
    QCOMPARE(now.dropRate, error.isEmpty() ? dropRate : 0.1);
    QCOMPARE(faults.isActive(), !error.isEmpty() || delayMs > 0 || dropRate > 0 || errorRate > 0 || strayRate > 0);
    faults.clear();
    QVERIFY(!faults.isActive());
    QCOMPARE(faults.nextRequest().kind, RequestFault::None);
}

void TestChamberFaults::certainFaults_data()
{
    QTest::addColumn<ChamberFaults::Settings>("settings");
    QTest::addColumn<int>("kind");
    QTest::newRow("none") << ChamberFaults::Settings{} << int(RequestFault::None);
    QTest::newRow("delay alone") << ChamberFaults::Settings{30, 0, 0, 0} << int(RequestFault::None);
    QTest::newRow("drop all") << ChamberFaults::Settings{30, 1, 0, 0} << int(RequestFault::Drop);
    QTest::newRow("error for all") << ChamberFaults::Settings{30, 0, 1, 0} << int(RequestFault::Error);
    QTest::newRow("stray for all") << ChamberFaults::Settings{30, 0, 0, 1} << int(RequestFault::Stray);
}

// Every request gets the fault of a rate of 1, and the delay set; stray
// answers have 4 to 16 bytes.
void TestChamberFaults::certainFaults()
{
    QFETCH(ChamberFaults::Settings, settings);
    QFETCH(int, kind);
    ChamberFaults faults(4711);
    QVERIFY(faults.setSettings(settings));
    QSet<int> straySizes;
    for (int request = 0; request < 1000; ++request) {
        const RequestFault fault = faults.nextRequest();
        QCOMPARE(int(fault.kind), kind);
        QCOMPARE(fault.delayMs, settings.delayMs);
        QCOMPARE(fault.strayBytes.isEmpty(), kind != RequestFault::Stray);
        if (kind == RequestFault::Stray)
            straySizes.insert(fault.strayBytes.size());
    }
    if (kind == RequestFault::Stray)
        QCOMPARE(straySizes, (QSet<int>{4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
}

// One draw per request decides among the faults, so each count over n =
// 10000 requests is binomial with its own rate p: mean n p, standard
// deviation sqrt(n p (1 - p)), accepted within five deviations:
//   drop  p = 0.2: 2000, sd 40.0, 1800 to 2200
//   error p = 0.3: 3000, sd 45.8, 2771 to 3229
//   stray p = 0.1: 1000, sd 30.0,  850 to 1150
//   none  p = 0.4: 4000, sd 49.0, 3755 to 4245
void TestChamberFaults::sharesWithinBinomialBounds()
{
    ChamberFaults faults(20240601);
    QVERIFY(faults.setSettings({0, 0.2, 0.3, 0.1}));
    QMap<int, int> counts;
    for (int request = 0; request < 10000; ++request)
        ++counts[faults.nextRequest().kind];
    QVERIFY2(counts.value(RequestFault::Drop) >= 1800 && counts.value(RequestFault::Drop) <= 2200,
             qPrintable(QString::number(counts.value(RequestFault::Drop))));
    QVERIFY2(counts.value(RequestFault::Error) >= 2771 && counts.value(RequestFault::Error) <= 3229,
             qPrintable(QString::number(counts.value(RequestFault::Error))));
    QVERIFY2(counts.value(RequestFault::Stray) >= 850 && counts.value(RequestFault::Stray) <= 1150,
             qPrintable(QString::number(counts.value(RequestFault::Stray))));
    QVERIFY2(counts.value(RequestFault::None) >= 3755 && counts.value(RequestFault::None) <= 4245,
             qPrintable(QString::number(counts.value(RequestFault::None))));
}

QTEST_GUILESS_MAIN(TestChamberFaults)
#include "tst_chamberfaults.moc"
