#include "support/TestDatabase.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>

namespace zelmor::testsupport {

namespace {

constexpr int shellTimeoutMs = 60000;

TestDatabase::ShellResult runShell(const QString& program, const QString& filePath, const QString& script)
{
    TestDatabase::ShellResult result;
    QProcess process;
    process.start(program, {QStringLiteral("-batch"), QStringLiteral("-bail"), QStringLiteral("-noheader"),
                            QStringLiteral("-list"), QStringLiteral("-separator"), QStringLiteral("|"), filePath});
    if (!process.waitForStarted(shellTimeoutMs)) {
        result.errorOutput = QStringLiteral("%1 did not start: %2").arg(program, process.errorString());
        return result;
    }
    process.write(script.toUtf8());
    process.write("\n");
    process.closeWriteChannel();
    if (!process.waitForFinished(shellTimeoutMs)) {
        process.kill();
        process.waitForFinished();
        result.errorOutput = QStringLiteral("%1 did not finish").arg(program);
        return result;
    }
    result.output = QString::fromUtf8(process.readAllStandardOutput());
    result.errorOutput = QString::fromUtf8(process.readAllStandardError());
    result.ok = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0 && result.errorOutput.isEmpty();
    return result;
}

} // namespace

const char* const TestDatabase::projectKey_ = "0a1b2c3d4e5f60718293a4b5c6d7e8f9";

TestDatabase::TestDatabase() = default;

bool TestDatabase::isValid() const
{
    return dir_.isValid();
}

QString TestDatabase::filePath(const QString& fileName) const
{
    return dir_.filePath(fileName);
}

QString TestDatabase::createEncrypted(const QString& fileName, const QString& sql, const QString& key)
{
    const QString file = filePath(fileName);
    return finish(file, runSqlcipher(file, key, sql));
}

QString TestDatabase::createPlain(const QString& fileName, const QString& sql)
{
    const QString file = filePath(fileName);
    return finish(file, runShell(QStringLiteral("sqlite3"), file, sql));
}

QString TestDatabase::createFile(const QString& fileName, const QByteArray& content)
{
    const QString file = filePath(fileName);
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(content) != content.size()) {
        lastError_ = out.errorString();
        return QString();
    }
    return file;
}

QString TestDatabase::lastError() const
{
    return lastError_;
}

TestDatabase::ShellResult TestDatabase::runSqlcipher(const QString& filePath, const QString& key, const QString& sql)
{
    if (key.isEmpty())
        return runShell(QStringLiteral("sqlite3"), filePath, sql);
    QString escapedKey = key;
    escapedKey.replace(QLatin1Char('\''), QLatin1String("''"));
    return runShell(QStringLiteral("sqlcipher"), filePath,
                    QStringLiteral("PRAGMA key = '%1';\n").arg(escapedKey) + sql);
}

QString TestDatabase::finish(const QString& filePath, const ShellResult& result)
{
    if (!result.ok) {
        lastError_ = result.errorOutput;
        return QString();
    }
    lastError_.clear();
    return filePath;
}

} // namespace zelmor::testsupport
