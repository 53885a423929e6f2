#pragma once

#include <QMap>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QString>
#include <QVariant>

class QSqlDriver;
class QSqlResult;

namespace zelmor::base::connection::databaseconnection {

// QSqlQuery behind virtual functions, so that a test double can stand in for
// the framework's query. Each member forwards to the call of the same name.
class QSqlQueryWrapper
{
public:
    explicit QSqlQueryWrapper(QSqlResult* result);
    explicit QSqlQueryWrapper(const QString& query = QString(), QSqlDatabase db = QSqlDatabase());
    explicit QSqlQueryWrapper(QSqlDatabase db);
    virtual ~QSqlQueryWrapper();

    virtual bool isValid() const;
    virtual bool isActive() const;
    virtual bool isNull(int field) const;
    virtual bool isNull(const QString& name) const;
    virtual int at() const;
    virtual QString lastQuery() const;
    virtual int numRowsAffected() const;
    virtual QSqlError lastError() const;
    virtual bool isSelect() const;
    virtual int size() const;
    virtual const QSqlDriver* driver() const;
    virtual const QSqlResult* result() const;
    virtual bool isForwardOnly() const;
    virtual QSqlRecord record() const;
    virtual void setForwardOnly(bool forward);
    virtual bool exec(const QString& query);
    virtual QVariant value(int index) const;
    virtual QVariant value(const QString& name) const;
    virtual void setNumericalPrecisionPolicy(QSql::NumericalPrecisionPolicy precisionPolicy);
    virtual QSql::NumericalPrecisionPolicy numericalPrecisionPolicy() const;
    virtual bool seek(int index, bool relative = false);
    virtual bool next();
    virtual bool previous();
    virtual bool first();
    virtual bool last();
    virtual bool exec();
    virtual bool execBatch(QSqlQuery::BatchExecutionMode mode = QSqlQuery::ValuesAsRows);
    virtual bool prepare(const QString& query);
    virtual void bindValue(const QString& placeholder, const QVariant& val, QSql::ParamType type = QSql::In);
    virtual void bindValue(int pos, const QVariant& val, QSql::ParamType type = QSql::In);
    virtual void addBindValue(const QVariant& val);
    virtual void addBindValue(const QVariant& val, QSql::ParamType type);
    virtual QVariant boundValue(const QString& placeholder) const;
    virtual QVariant boundValue(int pos) const;
    virtual QMap<QString, QVariant> boundValues() const;
    virtual QString executedQuery() const;
    virtual QVariant lastInsertId() const;
    virtual void finish();
    virtual bool nextResult();

private:
    QSqlQuery query;
};

} // namespace zelmor::base::connection::databaseconnection
