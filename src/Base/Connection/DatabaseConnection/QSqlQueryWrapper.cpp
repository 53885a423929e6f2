#include "Base/Connection/DatabaseConnection/QSqlQueryWrapper.h"

namespace zelmor::base::connection::databaseconnection {

QSqlQueryWrapper::QSqlQueryWrapper(QSqlResult* result)
    : query(result)
{
}

QSqlQueryWrapper::QSqlQueryWrapper(const QString& query, QSqlDatabase db)
    : query(query, db)
{
}

QSqlQueryWrapper::QSqlQueryWrapper(QSqlDatabase db)
    : query(db)
{
}

QSqlQueryWrapper::~QSqlQueryWrapper() = default;

bool QSqlQueryWrapper::isValid() const
{
    return query.isValid();
}
bool QSqlQueryWrapper::isActive() const
{
    return query.isActive();
}
bool QSqlQueryWrapper::isNull(int field) const
{
    return query.isNull(field);
}
bool QSqlQueryWrapper::isNull(const QString& name) const
{
    return query.isNull(name);
}
int QSqlQueryWrapper::at() const
{
    return query.at();
}
QString QSqlQueryWrapper::lastQuery() const
{
    return query.lastQuery();
}
int QSqlQueryWrapper::numRowsAffected() const
{
    return query.numRowsAffected();
}
QSqlError QSqlQueryWrapper::lastError() const
{
    return query.lastError();
}
bool QSqlQueryWrapper::isSelect() const
{
    return query.isSelect();
}
int QSqlQueryWrapper::size() const
{
    return query.size();
}
const QSqlDriver* QSqlQueryWrapper::driver() const
{
    return query.driver();
}
const QSqlResult* QSqlQueryWrapper::result() const
{
    return query.result();
}
bool QSqlQueryWrapper::isForwardOnly() const
{
    return query.isForwardOnly();
}
QSqlRecord QSqlQueryWrapper::record() const
{
    return query.record();
}
void QSqlQueryWrapper::setForwardOnly(bool forward)
{
    query.setForwardOnly(forward);
}
bool QSqlQueryWrapper::exec(const QString& query)
{
    return this->query.exec(query);
}
QVariant QSqlQueryWrapper::value(int index) const
{
    return query.value(index);
}
QVariant QSqlQueryWrapper::value(const QString& name) const
{
    return query.value(name);
}

void QSqlQueryWrapper::setNumericalPrecisionPolicy(QSql::NumericalPrecisionPolicy precisionPolicy)
{
    query.setNumericalPrecisionPolicy(precisionPolicy);
}

QSql::NumericalPrecisionPolicy QSqlQueryWrapper::numericalPrecisionPolicy() const
{
    return query.numericalPrecisionPolicy();
}

bool QSqlQueryWrapper::seek(int index, bool relative)
{
    return query.seek(index, relative);
}
bool QSqlQueryWrapper::next()
{
    return query.next();
}
bool QSqlQueryWrapper::previous()
{
    return query.previous();
}
bool QSqlQueryWrapper::first()
{
    return query.first();
}
bool QSqlQueryWrapper::last()
{
    return query.last();
}
bool QSqlQueryWrapper::exec()
{
    return query.exec();
}
bool QSqlQueryWrapper::execBatch(QSqlQuery::BatchExecutionMode mode)
{
    return query.execBatch(mode);
}
bool QSqlQueryWrapper::prepare(const QString& query)
{
    return this->query.prepare(query);
}

void QSqlQueryWrapper::bindValue(const QString& placeholder, const QVariant& val, QSql::ParamType type)
{
    query.bindValue(placeholder, val, type);
}

void QSqlQueryWrapper::bindValue(int pos, const QVariant& val, QSql::ParamType type)
{
    query.bindValue(pos, val, type);
}

void QSqlQueryWrapper::addBindValue(const QVariant& val)
{
    query.addBindValue(val);
}
void QSqlQueryWrapper::addBindValue(const QVariant& val, QSql::ParamType type)
{
    query.addBindValue(val, type);
}
QVariant QSqlQueryWrapper::boundValue(const QString& placeholder) const
{
    return query.boundValue(placeholder);
}
QVariant QSqlQueryWrapper::boundValue(int pos) const
{
    return query.boundValue(pos);
}
QMap<QString, QVariant> QSqlQueryWrapper::boundValues() const
{
    return query.boundValues();
}
QString QSqlQueryWrapper::executedQuery() const
{
    return query.executedQuery();
}
QVariant QSqlQueryWrapper::lastInsertId() const
{
    return query.lastInsertId();
}
void QSqlQueryWrapper::finish()
{
    query.finish();
}
bool QSqlQueryWrapper::nextResult()
{
    return query.nextResult();
}

} // namespace zelmor::base::connection::databaseconnection
