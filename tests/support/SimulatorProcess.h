#pragma once

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace zelmor::testsupport {

// The real chamber-simulator executable in a folder layout of its own, killed
// when the object goes:
//
//     <tmp>/a/b/c/work          working folder ("database/..." is looked for here)
//     <tmp>/a/b/c/ZELMOR4.ini   the ini file "../ZELMOR4.ini"
//     <tmp>/a/database          reached as "../../../database/..."
//     <tmp>/home/Documents      the documents folder (HOME points to <tmp>/home)
//
// It runs without a display, as on a server.
class SimulatorProcess
{
public:
    SimulatorProcess();
    ~SimulatorProcess();

    // Copies a catalogue to a path relative to the working folder.
    bool installCatalogue(const QString& sourceFile,
                          const QString& relativeTarget = QStringLiteral("database/configuration.sqlite3"));
    bool writeIni(const QByteArray& content);
    // HOME of the process; its documents folder is "Documents" in it.
    QString home() const { return path(QStringLiteral("home")); }
    // The text of a file in the documents folder; empty when missing.
    QByteArray documentsFile(const QString& name) const;
    bool hasDocumentsFile(const QString& name) const;

    // Runs the tool through "ip netns exec <name>", which keeps the process id.
    void setNetworkNamespace(const QString& name) { networkNamespace_ = name; }

    void start(const QStringList& arguments);
    // Until standard output holds `text`; false if the process ends without it.
    bool waitForOutput(const QByteArray& text, int timeoutMs = 10000);
    // The exit code once the process has ended by itself; -2 on a crash or timeout.
    int waitForExit(int timeoutMs = 10000);
    // Until the main thread waits in a poll-family system call with nothing
    // left to print; false if the process ends first.
    bool waitUntilIdle(int timeoutMs = 10000);
    bool isRunning() const { return process_.state() != QProcess::NotRunning; }
    qint64 processId() const { return process_.processId(); }

    QByteArray standardOutput()
    {
        collect();
        return output_;
    }
    // Standard output with each "Adding Signal" line folded into a '+'.
    QByteArray foldedOutput();
    QByteArray standardError()
    {
        collect();
        return error_;
    }

private:
    QString path(const QString& relative) const;
    void collect();

    QTemporaryDir dir_;
    QProcess process_;
    QProcessEnvironment environment_;
    QString networkNamespace_;
    QByteArray output_;
    QByteArray error_;
};

} // namespace zelmor::testsupport
