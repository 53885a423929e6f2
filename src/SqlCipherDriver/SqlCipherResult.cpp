#include "SqlCipherDriver/SqlCipherResult_p.h"

#include "SqlCipherDriver/SqlCipherDriver.h"

#include <QDateTime>
#include <QSqlError>
#include <QSqlField>

#include <sqlite3.h>

#include <cstdio>
#include <cstring>

namespace zelmor::sqldriver {

namespace {

// Skips white space, empty statements and comments; true if nothing else is left.
bool isBlank(const QChar* pos, const QChar* end)
{
    while (pos < end) {
        const QChar c = *pos;
        if (c.isSpace() || c == QLatin1Char(';')) {
            ++pos;
        } else if (c == QLatin1Char('-') && pos + 1 < end && pos[1] == QLatin1Char('-')) {
            while (pos < end && *pos != QLatin1Char('\n'))
                ++pos;
        } else if (c == QLatin1Char('/') && pos + 1 < end && pos[1] == QLatin1Char('*')) {
            pos += 2;
            while (pos + 1 < end && !(pos[0] == QLatin1Char('*') && pos[1] == QLatin1Char('/')))
                ++pos;
            pos += 2;
        } else {
            return false;
        }
    }
    return true;
}

bool startsWithWord(const QChar* pos, const QChar* end, QLatin1String word)
{
    if (end - pos < word.size())
        return false;
    for (int i = 0; i < word.size(); ++i) {
        if (pos[i].toUpper() != QLatin1Char(word.at(i)))
            return false;
    }
    return end - pos == word.size() || !pos[word.size()].isLetterOrNumber();
}

// Prepares the next statement at pos and moves pos behind it; leaves
// *statement null when only white space or comments were left.
int prepareNext(sqlite3* db, const QChar*& pos, const QChar* end, sqlite3_stmt** statement)
{
    *statement = nullptr;
    const void* tail = nullptr;
    const int bytes = int((end - pos) * sizeof(QChar));
    const int rc = sqlite3_prepare16_v2(db, pos, bytes, statement, &tail);
    pos = tail ? static_cast<const QChar*>(tail) : end;
    return rc;
}

int bindText(sqlite3_stmt* statement, int index, const QString& text)
{
    return sqlite3_bind_text16(statement, index, text.utf16(), text.size() * int(sizeof(QChar)), SQLITE_TRANSIENT);
}

// The text of Qt::ISODateWithMs in UTC, "2024-02-29T23:59:58.123Z", written
// without the framework's general formatter: bulk inserts bind one per row.
// Years of other than four digits take the framework's way.
int bindUtcTime(sqlite3_stmt* statement, int index, const QDateTime& time)
{
    const QDateTime utc = time.toUTC();
    const QDate date = utc.date();
    const QTime clock = utc.time();
    if (date.year() < 1 || date.year() > 9999 || !clock.isValid()) {
        return bindText(statement, index, utc.toString(Qt::ISODateWithMs));
    }
    char text[32];
    const int length =
        std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", date.year(), date.month(), date.day(),
                      clock.hour(), clock.minute(), clock.second(), clock.msec());
    return sqlite3_bind_text(statement, index, text, length, SQLITE_TRANSIENT);
}

} // namespace

SqlCipherResult::SqlCipherResult(const SqlCipherDriver* driver)
    : QSqlResult(driver)
    , driver_(const_cast<SqlCipherDriver*>(driver))
{
    if (driver_)
        driver_->registerResult(this);
}

SqlCipherResult::~SqlCipherResult()
{
    releaseStatement();
    if (driver_)
        driver_->unregisterResult(this);
}

QVariant SqlCipherResult::handle() const
{
    return QVariant::fromValue(statement_);
}

void SqlCipherResult::dropStatement()
{
    // A borrowed statement is finalized by the cache.
    if (statement_ && !entry_)
        sqlite3_finalize(statement_);
    forgetStatement();
    setActive(false);
    setAt(QSql::BeforeFirstRow);
}

void SqlCipherResult::forgetDriver()
{
    dropStatement();
    driver_ = nullptr;
}

QVariant::Type SqlCipherResult::fieldType(const char* declaredType)
{
    if (!declaredType || !*declaredType)
        return QVariant::ByteArray;
    const QByteArray type = QByteArray(declaredType).toUpper();
    // Types that the engine stores as text or numbers, but name a Qt type.
    if (type.contains("BOOL"))
        return QVariant::Bool;
    if (type.contains("DATETIME") || type.contains("TIMESTAMP"))
        return QVariant::DateTime;
    if (type == "DATE")
        return QVariant::Date;
    if (type == "TIME")
        return QVariant::Time;
    // The engine's affinity rules, in their order.
    if (type.contains("INT"))
        return QVariant::LongLong;
    if (type.contains("CHAR") || type.contains("CLOB") || type.contains("TEXT"))
        return QVariant::String;
    if (type.contains("BLOB"))
        return QVariant::ByteArray;
    return QVariant::Double;
}

sqlite3* SqlCipherResult::connection() const
{
    return driver_ ? driver_->db_ : nullptr;
}

void SqlCipherResult::setStatementError(const QString& text, int code, QSqlError::ErrorType type)
{
    sqlite3* db = connection();
    const QString message = db ? QString::fromUtf8(sqlite3_errmsg(db)) : QString::fromUtf8(sqlite3_errstr(code));
    setLastError(QSqlError(text, message, type, QString::number(code)));
}

bool SqlCipherResult::acquireStatement(const QString& sql, bool runLeadingStatements)
{
    releaseStatement();
    sqlite3* db = connection();
    if (!db) {
        setLastError(QSqlError(QStringLiteral("Driver not open"), QString(), QSqlError::ConnectionError));
        return false;
    }

    SqlCipherStatementCache& cache = driver_->statementCache();
    entry_ = cache.acquire(sql);
    if (entry_) {
        statement_ = entry_->statement;
        kind_ = StatementKind(entry_->kind);
        return true;
    }

    const QChar* pos = sql.constData();
    const QChar* const end = pos + sql.size();
    while (pos < end && pos->isSpace())
        ++pos;
    kind_ = startsWithWord(pos, end, QLatin1String("INSERT"))    ? StatementKind::Insert
            : startsWithWord(pos, end, QLatin1String("REPLACE")) ? StatementKind::Insert
            : startsWithWord(pos, end, QLatin1String("PRAGMA"))  ? StatementKind::Pragma
                                                                 : StatementKind::Other;
    bool single = true;

    sqlite3_stmt* statement = nullptr;
    int rc = prepareNext(db, pos, end, &statement);
    while (rc == SQLITE_OK && statement && !isBlank(pos, end)) {
        if (!runLeadingStatements) {
            sqlite3_finalize(statement);
            setLastError(QSqlError(QStringLiteral("Unable to execute multiple statements at a time"), QString(),
                                   QSqlError::StatementError));
            return false;
        }
        while ((rc = sqlite3_step(statement)) == SQLITE_ROW) {
        }
        if (rc != SQLITE_DONE) {
            setStatementError(QStringLiteral("Unable to execute statement"), rc, QSqlError::StatementError);
            sqlite3_finalize(statement);
            return false;
        }
        sqlite3_finalize(statement);
        single = false;
        rc = prepareNext(db, pos, end, &statement);
    }
    if (rc != SQLITE_OK) {
        setStatementError(QStringLiteral("Unable to prepare statement"), rc, QSqlError::StatementError);
        sqlite3_finalize(statement);
        return false;
    }
    if (!statement) {
        setLastError(QSqlError(QStringLiteral("Unable to prepare statement"),
                               QStringLiteral("no statement in the text"), QSqlError::StatementError));
        return false;
    }
    statement_ = statement;
    // A pragma such as "key" does its work while it is prepared, so running a
    // kept one again would do nothing.
    if (single && kind_ != StatementKind::Pragma)
        entry_ = cache.adopt(sql, statement, quint8(kind_));
    return true;
}

void SqlCipherResult::forgetStatement()
{
    statement_ = nullptr;
    entry_ = nullptr;
    stepping_ = false;
    rowPending_ = false;
    heldParameters_.clear();
    buffer_.clear();
    rowValues_.clear();
    rowValuesKnown_ = 0;
    ownRecord_.reset();
    recordChecked_ = false;
}

void SqlCipherResult::releaseStatement()
{
    if (entry_) {
        if (driver_)
            driver_->statementCache().release(entry_);
    } else if (statement_) {
        sqlite3_finalize(statement_);
    }
    forgetStatement();
}

bool SqlCipherResult::prepare(const QString& query)
{
    return acquireStatement(query, false);
}

bool SqlCipherResult::savePrepare(const QString& query)
{
    // The base class rewrites named placeholders (":name") into "?" with a
    // parser that costs more than preparing a cached statement; a text without
    // a colon comes out of it unchanged.
    if (query.contains(QLatin1Char(':')))
        return QSqlResult::savePrepare(query);
    clear();
    setQuery(query);
    return prepare(query);
}

void SqlCipherResult::bindValue(int index, const QVariant& value, QSql::ParamType type)
{
    // The base class also files each position under a name it formats (":0",
    // ":1", ...), for reading values back by name. In a bulk insert of a
    // thousand values a statement that costs more than binding and stepping
    // together; values bound by position keep only their place.
    if (type != QSql::In) {
        QSqlResult::bindValue(index, value, type);
        return;
    }
    QVector<QVariant>& values = boundValues();
    if (values.size() <= index)
        values.resize(index + 1);
    values[index] = value;
}

bool SqlCipherResult::reset(const QString& query)
{
    if (!acquireStatement(query, true))
        return false;
    return execute(false);
}

bool SqlCipherResult::exec()
{
    return execute(true);
}

bool SqlCipherResult::execute(bool bind)
{
    if (!statement_) {
        setLastError(QSqlError(QStringLiteral("Unable to execute statement"), QStringLiteral("no prepared statement"),
                               QSqlError::StatementError));
        return false;
    }
    if (stepping_)
        stopStepping();
    setAt(QSql::BeforeFirstRow);
    setSelect(false);
    setActive(false);
    rowPending_ = false;
    rowValuesKnown_ = 0;
    buffer_.clear();
    bufferFirstRow_ = 0;
    rowsAffected_ = -1;
    hasLastInsertId_ = false;

    if (bind && !bindParameters())
        return false;

    sqlite3* db = connection();
    const int changesBefore = sqlite3_total_changes(db);
    const int rc = sqlite3_step(statement_);
    if (rc != SQLITE_ROW && rc != SQLITE_DONE) {
        setStatementError(QStringLiteral("Unable to execute statement"), rc, QSqlError::StatementError);
        sqlite3_reset(statement_);
        return false;
    }

    // The columns can change when the engine re-prepares after a schema change.
    columnCount_ = sqlite3_column_count(statement_);
    recordChecked_ = false;
    readFromBuffer_ = !isForwardOnly();
    if (rc == SQLITE_ROW) {
        stepping_ = true;
        if (readFromBuffer_)
            bufferCurrentRow();
        else
            rowPending_ = true;
    } else {
        sqlite3_reset(statement_);
        if (columnCount_ == 0) {
            // total_changes moves only for rows this statement changed, so
            // sqlite3_changes() is not a stale count of an earlier statement.
            rowsAffected_ = sqlite3_total_changes(db) != changesBefore ? sqlite3_changes(db) : 0;
            if (kind_ == StatementKind::Insert && rowsAffected_ > 0) {
                hasLastInsertId_ = true;
                lastInsertId_ = sqlite3_last_insert_rowid(db);
            }
        }
    }
    setSelect(columnCount_ > 0);
    setActive(true);
    return true;
}

bool SqlCipherResult::bindParameters()
{
    const QVector<QVariant>& values = boundValues();
    const int expected = sqlite3_bind_parameter_count(statement_);
    if (values.size() != expected) {
        setLastError(QSqlError(
            QStringLiteral("Parameter count mismatch"),
            QStringLiteral("%1 value(s) bound, the statement has %2 parameter(s)").arg(values.size()).arg(expected),
            QSqlError::StatementError));
        return false;
    }
    heldParameters_ = values;

    for (int i = 0; i < heldParameters_.size(); ++i) {
        const QVariant& value = heldParameters_.at(i);
        const int index = i + 1;
        int rc = SQLITE_OK;
        if (value.isNull()) {
            rc = sqlite3_bind_null(statement_, index);
        } else {
            switch (value.userType()) {
            case QMetaType::Bool:
                rc = sqlite3_bind_int(statement_, index, *static_cast<const bool*>(value.constData()) ? 1 : 0);
                break;
            case QMetaType::Int:
                rc = sqlite3_bind_int(statement_, index, *static_cast<const int*>(value.constData()));
                break;
            case QMetaType::UInt:
                rc = sqlite3_bind_int64(statement_, index, *static_cast<const uint*>(value.constData()));
                break;
            case QMetaType::LongLong:
                rc = sqlite3_bind_int64(statement_, index, *static_cast<const qlonglong*>(value.constData()));
                break;
            case QMetaType::ULongLong:
                // Keeps the bits; values above the signed range read back negative.
                rc = sqlite3_bind_int64(statement_, index,
                                        sqlite3_int64(*static_cast<const qulonglong*>(value.constData())));
                break;
            case QMetaType::Short:
            case QMetaType::UShort:
            case QMetaType::Char:
            case QMetaType::SChar:
            case QMetaType::UChar:
            case QMetaType::Long:
            case QMetaType::ULong:
                rc = sqlite3_bind_int64(statement_, index, value.toLongLong());
                break;
            case QMetaType::Double:
                rc = sqlite3_bind_double(statement_, index, *static_cast<const double*>(value.constData()));
                break;
            case QMetaType::Float:
                rc = sqlite3_bind_double(statement_, index, *static_cast<const float*>(value.constData()));
                break;
            case QMetaType::QString: {
                const QString* text = static_cast<const QString*>(value.constData());
                rc = sqlite3_bind_text16(statement_, index, text->constData(), text->size() * int(sizeof(QChar)),
                                         SQLITE_STATIC);
                break;
            }
            case QMetaType::QByteArray: {
                const QByteArray* bytes = static_cast<const QByteArray*>(value.constData());
                rc = bytes->isEmpty()
                         ? sqlite3_bind_zeroblob(statement_, index, 0)
                         : sqlite3_bind_blob(statement_, index, bytes->constData(), bytes->size(), SQLITE_STATIC);
                break;
            }
            case QMetaType::QDateTime:
                rc = bindUtcTime(statement_, index, *static_cast<const QDateTime*>(value.constData()));
                break;
            case QMetaType::QDate:
                rc = bindText(statement_, index, value.toDate().toString(Qt::ISODate));
                break;
            case QMetaType::QTime:
                rc = bindText(statement_, index, value.toTime().toString(Qt::ISODateWithMs));
                break;
            default:
                if (!value.canConvert<QString>()) {
                    setLastError(
                        QSqlError(QStringLiteral("Unable to bind parameter %1").arg(index),
                                  QStringLiteral("unsupported type %1").arg(QString::fromLatin1(value.typeName())),
                                  QSqlError::StatementError));
                    heldParameters_.clear();
                    return false;
                }
                rc = bindText(statement_, index, value.toString());
                break;
            }
        }
        if (rc != SQLITE_OK) {
            setStatementError(QStringLiteral("Unable to bind parameter %1").arg(index), rc, QSqlError::StatementError);
            sqlite3_clear_bindings(statement_);
            heldParameters_.clear();
            return false;
        }
    }
    return true;
}

bool SqlCipherResult::stepRow()
{
    rowValuesKnown_ = 0;
    const int rc = sqlite3_step(statement_);
    if (rc == SQLITE_ROW)
        return true;
    if (rc != SQLITE_DONE)
        setStatementError(QStringLiteral("Unable to fetch row"), rc, QSqlError::StatementError);
    stopStepping();
    return false;
}

void SqlCipherResult::stopStepping()
{
    rowValuesKnown_ = 0;
    sqlite3_reset(statement_);
    stepping_ = false;
    rowPending_ = false;
}

void SqlCipherResult::bufferCurrentRow()
{
    for (int column = 0; column < columnCount_; ++column)
        buffer_.append(columnValue(column));
}

bool SqlCipherResult::bufferRowsUpTo(int row)
{
    while (bufferFirstRow_ + buffer_.size() / qMax(1, columnCount_) <= row) {
        if (!stepping_ || !stepRow())
            return false;
        bufferCurrentRow();
    }
    return true;
}

QVariant SqlCipherResult::columnValue(int column) const
{
    switch (sqlite3_column_type(statement_, column)) {
    case SQLITE_INTEGER: {
        const qlonglong value = sqlite3_column_int64(statement_, column);
        if (numericalPrecisionPolicy() == QSql::LowPrecisionInt32)
            return QVariant(int(value));
        return QVariant(value);
    }
    case SQLITE_FLOAT: {
        const double value = sqlite3_column_double(statement_, column);
        switch (numericalPrecisionPolicy()) {
        case QSql::LowPrecisionInt32:
            return QVariant(int(value));
        case QSql::LowPrecisionInt64:
            return QVariant(qlonglong(value));
        case QSql::HighPrecision:
            return QVariant(QString::number(value, 'g', 17));
        default:
            return QVariant(value);
        }
    }
    case SQLITE_TEXT: {
        const char* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
        return QVariant(QString::fromUtf8(text, sqlite3_column_bytes(statement_, column)));
    }
    case SQLITE_BLOB: {
        const char* bytes = static_cast<const char*>(sqlite3_column_blob(statement_, column));
        const int size = sqlite3_column_bytes(statement_, column);
        // An empty blob is not NULL: keep it a non-null, empty array.
        return QVariant(size > 0 ? QByteArray(bytes, size) : QByteArray(""));
    }
    default:
        // NULL as Qt's own SQLite driver gives it, whatever the column's type:
        // a null text, valid and isNull(), so that "a NULL" and "no value at
        // all" (an invalid QVariant) stay apart.
        return QVariant(QVariant::String);
    }
}

QVariant SqlCipherResult::data(int column)
{
    if (column < 0 || column >= columnCount_ || at() < 0)
        return QVariant();
    if (readFromBuffer_) {
        const int index = (at() - bufferFirstRow_) * columnCount_ + column;
        return index >= 0 && index < buffer_.size() ? buffer_.at(index) : QVariant();
    }
    if (!stepping_)
        return QVariant();
    if (column >= 64)
        return columnValue(column);
    const quint64 bit = quint64(1) << column;
    if (rowValuesKnown_ & bit)
        return rowValues_.at(column);
    if (rowValues_.size() < columnCount_)
        rowValues_.resize(columnCount_);
    rowValues_[column] = columnValue(column);
    rowValuesKnown_ |= bit;
    return rowValues_.at(column);
}

bool SqlCipherResult::isNull(int column)
{
    if (column < 0 || column >= columnCount_ || at() < 0)
        return true;
    if (readFromBuffer_) {
        const int index = (at() - bufferFirstRow_) * columnCount_ + column;
        return index < 0 || index >= buffer_.size() || buffer_.at(index).isNull();
    }
    return !stepping_ || sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

bool SqlCipherResult::fetchNext()
{
    if (!isActive() || !isSelect())
        return false;
    if (readFromBuffer_)
        return fetch(at() + 1);
    if (rowPending_) {
        rowPending_ = false;
        setAt(at() + 1);
        return true;
    }
    if (!stepping_ || !stepRow())
        return false;
    setAt(at() + 1);
    return true;
}

bool SqlCipherResult::fetch(int row)
{
    if (!isActive() || !isSelect() || row < 0)
        return false;
    if (!readFromBuffer_) {
        if (row == at())
            return true;
        if (row != at() + 1)
            return false;
        return fetchNext();
    }
    if (row < bufferFirstRow_ || !bufferRowsUpTo(row))
        return false;
    setAt(row);
    return true;
}

bool SqlCipherResult::fetchFirst()
{
    if (isForwardOnly() && !readFromBuffer_) {
        if (at() == 0)
            return true;
        return at() == QSql::BeforeFirstRow && fetchNext();
    }
    return fetch(0);
}

bool SqlCipherResult::fetchLast()
{
    if (!isActive() || !isSelect())
        return false;
    if (!readFromBuffer_) {
        // Forward-only: walk to the end, keeping only the row last passed.
        int row = at();
        if (rowPending_) {
            rowPending_ = false;
            ++row;
        }
        if (row < 0 && !(stepping_ && stepRow()))
            return false;
        row = qMax(row, 0);
        readFromBuffer_ = true;
        bufferFirstRow_ = row;
        buffer_.clear();
        if (stepping_)
            bufferCurrentRow();
        while (stepping_ && stepRow()) {
            ++row;
            buffer_.clear();
            bufferFirstRow_ = row;
            bufferCurrentRow();
        }
        if (buffer_.isEmpty())
            return false;
        setAt(bufferFirstRow_);
        return true;
    }
    while (stepping_ && stepRow())
        bufferCurrentRow();
    const int rows = bufferFirstRow_ + buffer_.size() / qMax(1, columnCount_);
    if (rows == 0)
        return false;
    setAt(rows - 1);
    return true;
}

int SqlCipherResult::size()
{
    return -1;
}

int SqlCipherResult::numRowsAffected()
{
    return rowsAffected_;
}

QVariant SqlCipherResult::lastInsertId() const
{
    return hasLastInsertId_ ? QVariant(lastInsertId_) : QVariant();
}

QSqlRecord SqlCipherResult::record() const
{
    if (!isActive() || !isSelect() || !statement_)
        return QSqlRecord();
    if (!recordChecked_) {
        if (!recordMatchesColumns())
            buildRecord();
        recordChecked_ = true;
    }
    return recordSlot();
}

namespace {

const char* orEmpty(const char* text)
{
    return text ? text : "";
}

} // namespace

QSqlRecord& SqlCipherResult::recordSlot() const
{
    return entry_ ? entry_->record : ownRecord().record;
}

QByteArray& SqlCipherResult::signatureSlot() const
{
    return entry_ ? entry_->recordSignature : ownRecord().signature;
}

SqlCipherResult::OwnRecord& SqlCipherResult::ownRecord() const
{
    if (!ownRecord_)
        ownRecord_ = std::make_unique<OwnRecord>();
    return *ownRecord_;
}

bool SqlCipherResult::recordMatchesColumns() const
{
    const QByteArray& signature = signatureSlot();
    if (signature.isEmpty())
        return false;
    const char* pos = signature.constData();
    const char* const end = pos + signature.size();
    for (int column = 0; column < columnCount_; ++column) {
        for (const char* part : {sqlite3_column_name(statement_, column), sqlite3_column_decltype(statement_, column),
                                 sqlite3_column_table_name(statement_, column)}) {
            // The signature's parts end in '\0', and so does the whole array.
            for (part = orEmpty(part); *part && *part == *pos; ++part, ++pos) {
            }
            if (*part || pos == end || *pos)
                return false;
            ++pos;
        }
    }
    return pos == end;
}

void SqlCipherResult::buildRecord() const
{
    QSqlRecord& record = recordSlot();
    QByteArray& signature = signatureSlot();
    record.clear();
    signature.clear();
    for (int column = 0; column < columnCount_; ++column) {
        const char* name = orEmpty(sqlite3_column_name(statement_, column));
        const char* declaredType = orEmpty(sqlite3_column_decltype(statement_, column));
        const char* table = orEmpty(sqlite3_column_table_name(statement_, column));
        for (const char* part : {name, declaredType, table})
            signature.append(part, int(std::strlen(part)) + 1);
        record.append(QSqlField(QString::fromUtf8(name), fieldType(declaredType), QString::fromUtf8(table)));
    }
}

void SqlCipherResult::detachFromResultSet()
{
    if (statement_ && stepping_)
        stopStepping();
    rowPending_ = false;
    buffer_.clear();
    rowValues_.clear();
    rowValuesKnown_ = 0;
}

} // namespace zelmor::sqldriver
