#include "Tools/DatabaseTool/Progress.h"

#include <QTextStream>
#include <QtTest>

using zelmor::tools::databasetool::Progress;

class TestProgress : public QObject
{
    Q_OBJECT

private slots:
    void onATerminal();
    void elsewhereNothing();
};

// Each line written over the one before; a count only when its percentage moves.
void TestProgress::onATerminal()
{
    QString text;
    QTextStream stream(&text);
    {
        Progress progress(stream, true);
        progress.say("reading 3 rows of recording 7");
        QCOMPARE(text, QString("\r\x1b[Kzelmor-db: reading 3 rows of recording 7"));
        text.clear();
        progress.count("writing", 0, 3);
        progress.count("writing", 1, 3);
        progress.count("writing", 1, 3);
        QCOMPARE(text, QString("\r\x1b[Kzelmor-db: writing 0% (0 of 3)\r\x1b[Kzelmor-db: writing 33% (1 of 3)"));
        text.clear();
    }
    // Gone with the object: the line is emptied.
    QCOMPARE(text, QString("\r\x1b[K"));
}

void TestProgress::elsewhereNothing()
{
    QString text;
    QTextStream stream(&text);
    {
        Progress progress(stream, false);
        progress.say("reading");
        progress.count("writing", 1, 2);
        progress.finish();
    }
    QCOMPARE(text, QString());
}

QTEST_GUILESS_MAIN(TestProgress)
#include "tst_progress.moc"
