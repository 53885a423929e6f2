// A plain Qt program that knows nothing of the project: it finds the driver
// only as a plugin. Arguments: database file, key, statement. Prints the first
// column of each row; exit code 2 when the driver is missing, 1 on SQL errors.
#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTextStream>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    QTextStream out(stdout);
    QTextStream err(stderr);
    if (args.size() != 4) {
        err << "usage: plugin_probe <file> <key> <statement>\n";
        return 1;
    }
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLCIPHER"))) {
        err << "QSQLCIPHER not available\n";
        return 2;
    }
    int rc = 0;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLCIPHER"), QStringLiteral("probe"));
        db.setDatabaseName(args.at(1));
        if (!db.open()) {
            err << db.lastError().text() << '\n';
            return 1;
        }
        QSqlQuery query(db);
        if (!query.exec(QStringLiteral("PRAGMA key = '%1';").arg(args.at(2))) || !query.exec(args.at(3))) {
            err << query.lastError().text() << '\n';
            rc = 1;
        }
        while (rc == 0 && query.next())
            out << query.value(0).toString() << '\n';
    }
    QSqlDatabase::removeDatabase(QStringLiteral("probe"));
    return rc;
}
