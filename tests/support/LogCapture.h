#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace zelmor::testsupport {

// Records the log messages of the categories that start with a prefix, with
// their level, while the object lives; messages of other
// categories go on to the handler that was installed before. One at a time,
// on the test's thread: captures don't nest.
//
//     LogCapture log(QStringLiteral("zelmor.SqliteConnection"));
//     connection.closeDatabase();
//     QCOMPARE(log.texts(), QStringList{"info: Closing Connection to c1"});
class LogCapture
{
public:
    explicit LogCapture(const QString& categoryPrefix);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // "<level>: <message>" for each record, levels "debug", "info", "warning",
    // "critical", "fatal"; handy for one QCOMPARE over the whole sequence.
    QStringList texts() const;
    // The messages of one level only.
    QStringList messages(QtMsgType type) const;

private:
    struct Record
    {
        QtMsgType type;
        QString message;
    };

    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message);

    QString prefix_;
    QList<Record> records_;
    QtMessageHandler previous_ = nullptr;
};

} // namespace zelmor::testsupport
