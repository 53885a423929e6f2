#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace zelmor::testsupport {

// Database files for tests, made by Debian's command-line shells, not by the
// project's own code: "sqlcipher" for encrypted files, "sqlite3" for plain
// ones. All files live in one temporary folder that goes away with the object.
//
//     TestDatabase db;
//     const QString path = db.createEncrypted("config.sqlite3",
//         "CREATE TABLE t(a INTEGER); INSERT INTO t VALUES (1);");
//     QVERIFY2(!path.isEmpty(), qPrintable(db.lastError()));
//
// The shells run with -batch -bail: the first failing statement stops them and
// the call fails. Output rows come one per line, columns separated by '|',
// NULL printed as an empty text.
class TestDatabase
{
public:
    // The key of the project's test databases, as used in "PRAGMA key = '<key>';".
    static const char* const projectKey_;

    struct ShellResult
    {
        bool ok = false;
        QString output;      // standard output
        QString errorOutput; // standard error, or why the shell did not run
    };

    TestDatabase();

    bool isValid() const;
    // A path inside the temporary folder.
    QString filePath(const QString& fileName) const;

    // Runs sql on <folder>/fileName with "PRAGMA key = '<key>';" first, making
    // the file when it is missing. Returns the file's path, or an empty text on
    // failure (lastError() says why).
    QString createEncrypted(const QString& fileName, const QString& sql,
                            const QString& key = QLatin1String(projectKey_));
    // The same with the plain "sqlite3" shell and no key.
    QString createPlain(const QString& fileName, const QString& sql);
    // Writes raw bytes, e.g. a file that is no database at all.
    QString createFile(const QString& fileName, const QByteArray& content);

    // The standard error of the last failed create call.
    QString lastError() const;

    // Runs sql through the shell on any file, e.g. to check what the code
    // under test wrote. An empty key runs "sqlite3" instead of "sqlcipher".
    static ShellResult runSqlcipher(const QString& filePath, const QString& key, const QString& sql);

private:
    QString finish(const QString& filePath, const ShellResult& result);

    QTemporaryDir dir_;
    QString lastError_;
};

} // namespace zelmor::testsupport
