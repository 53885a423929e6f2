#pragma once

#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QObject>
#include <QStringList>

class QSqlDatabase;

namespace zelmor::base::connection::databaseconnection {

class QSqlQueryWrapper;

Q_DECLARE_LOGGING_CATEGORY(SQLITECONNECTION)

// The table that holds the schema version, in its one column "version".
extern const char* const databaseVersionInfoString;

// An encrypted SQLite database reached through the "QSQLCIPHER" driver under a
// connection name of the framework. The name is the only state kept here: each
// call looks the connection up again. Use on the thread that made it.
//
// Failures are logged in "zelmor.SqliteConnection" and emitted through error();
// the operation returns its empty value.
class SqliteConnection : public QObject, public zelmor::domain::api::ISqlConnection
{
    Q_OBJECT

public:
    explicit SqliteConnection(const QString& connectionName, QObject* parent = nullptr);
    ~SqliteConnection() override;

    ExecuteResult execute(const zelmor::domain::api::ISqlQuery& query) override;
    bool executeTransaction(const QList<QSharedPointer<zelmor::domain::api::ISqlQuery>>& queries) override;
    QList<QList<QVariant>> fetch(const zelmor::domain::api::ISqlQuery& query) const override;
    void fetch(const zelmor::domain::api::ISqlQuery& query,
               std::function<void(QList<QVariant>, int)> callback) override;
    QList<QVariant> fetchSingleColumn(const zelmor::domain::api::ISqlQuery& query) const override;
    QList<QVariant> fetchSingleRow(const zelmor::domain::api::ISqlQuery& query) const override;
    QVariant fetchSingleValue(const zelmor::domain::api::ISqlQuery& query) const override;
    // A wrong key is not noticed here: the first statement that reads a page fails.
    bool openDatabase(const QString& databaseFile, const QString& userName, const QString& password,
                      const QString& key) override;
    void closeDatabase() override;
    bool emptyDatabase() override;
    bool containsTable(const QString& table) const override;
    int getDatabaseVersionInfo() override;

    // The connection name, not the file: callers use it as the connection's key.
    virtual QString getDatabaseFilePath() const;
    // The only way values reach a statement.
    virtual bool bindValuesToQuery(QSqlQueryWrapper& query, const QString& queryString,
                                   const QList<QVariant>& values) const;
    virtual QList<QList<QVariant>> parseQueryResult(QSqlQueryWrapper& query) const;
    virtual void parseQueryResult(QSqlQueryWrapper& query, std::function<void(QList<QVariant>, int)> callback);
    virtual bool activateForeignKeys();
    virtual bool deactivateForeignKeys();
    virtual bool changeForeignKeyActivation(bool on);

    bool rekeyDatabase(QString newKey);
    QSqlDatabase getDatabase() const;
    QStringList getColumnNames(const QString& table);

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

private:
    QString connectionName;
};

} // namespace zelmor::base::connection::databaseconnection
