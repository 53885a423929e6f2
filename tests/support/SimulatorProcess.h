#pragma once

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace zelmor::testsupport {

// The real chamber-simulator executable in a folder layout of its own:
//
//     <tmp>/a/b/c/work          working folder ("database/..." is looked for here)
//     <tmp>/a/b/c/ZELMOR4.ini   the ini file "../ZELMOR4.ini"
//     <tmp>/a/database          reached as "../../../database/..."
//     <tmp>/home/Documents      the documents folder (HOME, XDG_CONFIG_HOME point here)
//
// The process is killed when the object goes.
//
//     SimulatorProcess simulator;
//     QVERIFY(simulator.installCatalogue(cataloguePath));
//     simulator.start({"tlx", "-i127.0.57.1"});
//     QVERIFY(simulator.waitForOutput("Start TLX simulation"));
class SimulatorProcess
{
public:
    SimulatorProcess();
    ~SimulatorProcess();
    SimulatorProcess(const SimulatorProcess&) = delete;
    SimulatorProcess& operator=(const SimulatorProcess&) = delete;

    static QString executable();

    // Copies a catalogue to a path relative to the working folder.
    bool installCatalogue(const QString& sourceFile,
                          const QString& relativeTarget = QStringLiteral("database/configuration.sqlite3"));
    bool writeIni(const QByteArray& content);
    // The text of a file in the documents folder; empty when missing.
    QByteArray documentsFile(const QString& name) const;
    bool hasDocumentsFile(const QString& name) const;

    QProcessEnvironment& environment() { return environment_; }
    // Runs the tool through "ip netns exec <name>".
    void setNetworkNamespace(const QString& name) { networkNamespace_ = name; }

    void start(const QStringList& arguments);
    // Until standard output holds `text` (or the process ends without it).
    bool waitForOutput(const QByteArray& text, int timeoutMs = 10000);
    // Until the process has ended; false on timeout.
    bool waitForFinished(int timeoutMs = 10000);
    // Until the main thread waits in the event loop with nothing left to say:
    // blocked in a poll-family system call. Returns false if it ends first.
    bool waitUntilIdle(int timeoutMs = 10000);
    bool isRunning() const { return process_.state() != QProcess::NotRunning; }

    QByteArray standardOutput() { collect(); return output_; }
    QByteArray standardError() { collect(); return error_; }
    int exitCode() const { return process_.exitCode(); }
    QProcess::ExitStatus exitStatus() const { return process_.exitStatus(); }
    qint64 processId() const { return process_.processId(); }

private:
    QString path(const char* relative) const;
    void collect();

    QTemporaryDir dir_;
    QProcess process_;
    QProcessEnvironment environment_;
    QString networkNamespace_;
    QByteArray output_;
    QByteArray error_;
};

} // namespace zelmor::testsupport
