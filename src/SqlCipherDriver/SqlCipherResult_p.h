#pragma once

#include "SqlCipherDriver/SqlCipherStatementCache_p.h"

#include <QSqlError>
#include <QSqlRecord>
#include <QSqlResult>
#include <QVariant>
#include <QVector>

#include <memory>

struct sqlite3;
struct sqlite3_stmt;
Q_DECLARE_OPAQUE_POINTER(sqlite3_stmt*)
Q_DECLARE_METATYPE(sqlite3_stmt*)

namespace zelmor::sqldriver {

class SqlCipherDriver;

// One statement of a SqlCipherDriver connection. Internal to the driver.
//
// The statement comes from the driver's cache when its text was prepared
// before and goes back there on re-prepare and destruction. exec() steps once,
// so errors of the first row (a wrong key, a constraint) show at exec(); the
// row stepped there is handed out by the first fetch. Forward-only results read
// the columns straight from the statement; others keep the rows they passed.
class SqlCipherResult : public QSqlResult
{
public:
    explicit SqlCipherResult(const SqlCipherDriver* driver);
    ~SqlCipherResult() override;

    QVariant handle() const override;

    // The connection is closing: finalize the statement, keep nothing of it.
    void dropStatement();
    // The driver is being destroyed.
    void forgetDriver();

    // Field type for a declared column type, after SQLite's affinity rules.
    static QVariant::Type fieldType(const char* declaredType);

protected:
    bool prepare(const QString& query) override;
    bool savePrepare(const QString& query) override;
    void bindValue(int index, const QVariant& value, QSql::ParamType type) override;
    using QSqlResult::bindValue;
    bool exec() override;
    bool reset(const QString& query) override;

    QVariant data(int column) override;
    bool isNull(int column) override;
    bool fetch(int row) override;
    bool fetchNext() override;
    bool fetchFirst() override;
    bool fetchLast() override;
    int size() override;
    int numRowsAffected() override;
    QVariant lastInsertId() const override;
    QSqlRecord record() const override;
    void detachFromResultSet() override;

private:
    enum class StatementKind : quint8 { Other, Insert, Pragma };

    bool acquireStatement(const QString& sql, bool runLeadingStatements);
    void releaseStatement();
    // Clears what the result knew of its statement; finalizes nothing.
    void forgetStatement();
    bool execute(bool bindParameters);
    bool bindParameters();
    bool stepRow();
    void stopStepping();
    void bufferCurrentRow();
    bool bufferRowsUpTo(int row);
    QVariant columnValue(int column) const;
    void setStatementError(const QString& text, int code, QSqlError::ErrorType type);
    sqlite3* connection() const;

    SqlCipherDriver* driver_ = nullptr;
    sqlite3_stmt* statement_ = nullptr;
    // The cache entry the statement is borrowed from; null when the result
    // owns its statement (pragmas, several statements in one text, or a text
    // another live result is running).
    SqlCipherStatementCache::Entry* entry_ = nullptr;
    StatementKind kind_ = StatementKind::Other;

    bool stepping_ = false;   // the statement sits on a row, more may follow
    bool rowPending_ = false; // forward-only: exec() stepped a row not yet fetched
    bool readFromBuffer_ = false;
    int columnCount_ = 0;
    int bufferFirstRow_ = 0;   // row number of the first buffered row
    QVector<QVariant> buffer_; // buffered rows, columnCount_ values each
    // Forward-only: the current row's values already converted, so that
    // reading a column twice (QSqlQuery::record() reads every column) does
    // not convert it twice. A bit per column, for the first 64 columns.
    QVector<QVariant> rowValues_;
    quint64 rowValuesKnown_ = 0;

    int rowsAffected_ = -1;
    bool hasLastInsertId_ = false;
    qlonglong lastInsertId_ = 0;

    // Text and blob parameters are bound without a copy; these keep their
    // buffers alive while the statement may read them.
    QVector<QVariant> heldParameters_;

    // A borrowed statement keeps its record in the cache entry; the signature
    // tells whether the record still fits the statement's columns.
    QSqlRecord& recordSlot() const;
    QByteArray& signatureSlot() const;
    bool recordMatchesColumns() const;
    void buildRecord() const;
    struct OwnRecord
    {
        QSqlRecord record;
        QByteArray signature;
    };
    OwnRecord& ownRecord() const;
    // Made on demand: most results borrow their statement and never need it.
    mutable std::unique_ptr<OwnRecord> ownRecord_;
    mutable bool recordChecked_ = false;
};

} // namespace zelmor::sqldriver
