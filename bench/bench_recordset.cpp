// The recordset store at volume, on encrypted files, with the SQLCipher C API
// as the floor where one exists:
//
// (a) addRecordsToQuery of N rows of 20 signals, against the same rows written
//     through one prepared multi-row INSERT of the same shape, reused in one
//     transaction (the floor), with the connection's pragmas;
// (b) a full read (maxCount -1): the first one, which fetches the rows, against
//     stepping the same SELECT through the C API; then, with the rows cached,
//     the conversion on the thread pool against the same read on one thread;
// (c) a chart read (maxCount 1000) of the cached rows;
// (d) resident memory with the rows cached.
//
//     bench_recordset [N ...] [--only=abcd]   (default N: 10000 100000 800000 1000000)
//
// N above the row cache's 800 000 rows isn't cached: its reads fetch every time.

#include "Base/Connection/DatabaseConnection/SqlChamberDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRecordsetConversion.h"
#include "Base/Connection/DatabaseConnection/SqlRecordsetDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlRoomDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/RecordingId.h"
#include "Domain/Types/Recordset.h"
#include "Domain/Types/RecordsetComment.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>

#include <sqlite3.h>

#include <malloc.h>
#include <sys/resource.h>

#include <algorithm>
#include <thread>
#include <vector>

using namespace zelmor::base::connection::databaseconnection;
using namespace zelmor::domain::types;

namespace {

const QString key = QStringLiteral("0a1b2c3d4e5f60718293a4b5c6d7e8f9");
const QList<SignalId> signalIds = {101, 102, 103, 104, 105, 111, 112, 114, 121, 131,
                                   132, 133, 134, 141, 142, 143, 151, 152, 153, 154};
QTextStream out(stdout);

QString sourceFile(const QString& name)
{
    return QStringLiteral(ZELMOR_SOURCE_DIR "/database/") + name;
}

// Opens an encrypted file through the C API with the connection's pragmas.
sqlite3* openC(const QString& path, const char* journal)
{
    sqlite3* db = nullptr;
    const QByteArray pragmas = QStringLiteral("PRAGMA key = '%1'; PRAGMA foreign_keys = ON; PRAGMA journal_mode = %2;"
                                              " PRAGMA temp_store = MEMORY;")
                                   .arg(key, QLatin1String(journal))
                                   .toUtf8();
    if (sqlite3_open(QFile::encodeName(path).constData(), &db) != SQLITE_OK
        || sqlite3_exec(db, pragmas.constData(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        out << "C API could not open " << path << ": " << sqlite3_errmsg(db) << Qt::endl;
        sqlite3_close(db);
        return nullptr;
    }
    return db;
}

bool execFile(sqlite3* db, const QString& file, const QString& more = QString())
{
    QFile sql(file);
    if (!sql.open(QIODevice::ReadOnly)) {
        return false;
    }
    char* message = nullptr;
    const QByteArray text = sql.readAll() + more.toUtf8();
    if (sqlite3_exec(db, text.constData(), nullptr, nullptr, &message) != SQLITE_OK) {
        out << "schema: " << message << Qt::endl;
        sqlite3_free(message);
        return false;
    }
    return true;
}

// An application file with chamber 1, its recording 1 of the 20 signals in
// signal_1 to signal_20, and a few tolerance ranges.
bool createApplication(const QString& path)
{
    QString rows = QStringLiteral("INSERT INTO chamber (id, chamber_name, chamber_type_id) VALUES (1, 'C', 1);"
                                  "INSERT INTO recording (id, recording_name, chamber_id) VALUES (1, 'R', 1);"
                                  "INSERT INTO tolerance_range VALUES ('2024-01-01T00:00:00.000Z', 1, 101, 1, 10, 30),"
                                  " ('2024-01-02T00:00:00.000Z', 1, 101, 1, 15, 25),"
                                  " ('2024-01-01T00:00:00.000Z', 1, 102, 2, 5, 5);");
    for (int index = 0; index < signalIds.size(); ++index) {
        rows += QStringLiteral("INSERT INTO recording_has_signal_column VALUES (1, %1, %2);")
                    .arg(signalIds.at(index))
                    .arg(index + 1);
    }
    sqlite3* db = openC(path, "MEMORY");
    const bool ok = db && execFile(db, sourceFile(QStringLiteral("application-schema.sql")), rows);
    sqlite3_close(db);
    return ok;
}

bool createCatalogue(const QString& path)
{
    sqlite3* db = openC(path, "MEMORY");
    const bool ok = db && execFile(db, sourceFile(QStringLiteral("schema.sql")))
                    && execFile(db, sourceFile(QStringLiteral("sample-data.sql")));
    sqlite3_close(db);
    return ok;
}

qint64 residentKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').value(0).toLongLong();
        }
    }
    return -1;
}

QDateTime timeOf(int row)
{
    return QDateTime(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC).addSecs(row);
}

// The value of signal index at a row, the same on both sides.
double valueOf(int row, int index)
{
    return (row % 1000) * 0.25 + index;
}

// The store with its chamber store, on one connection, and the catalogue.
struct Stores
{
    Stores(const QString& application, const QString& catalogue)
        : connection(QStringLiteral("bench_application_%1").arg(++count))
        , catalogueConnection(QStringLiteral("bench_catalogue_%1").arg(count))
    {
        ok = connection.openDatabase(application, QString(), QString(), key)
             && catalogueConnection.openDatabase(catalogue, QString(), QString(), key)
             && configuration.setDependencies(&catalogueConnection) && rooms.setDependencies(&connection)
             && chambers.setDependencies(&connection, &configuration, &rooms)
             && recordsets.setDependencies(&connection, &configuration, &chambers);
    }

    static inline int count = 0;
    SqliteConnection connection;
    SqliteConnection catalogueConnection;
    SqlConfigurationDatabaseConnection configuration;
    SqlRoomDatabaseConnection rooms;
    SqlChamberDatabaseConnection chambers;
    SqlRecordsetDatabaseConnection recordsets;
    bool ok = false;
};

QList<Recordset> makeRecordsets(int rows, const QMap<int, ChamberSignal>& signalMap)
{
    QList<Recordset> recordsets;
    recordsets.reserve(rows);
    for (int row = 0; row < rows; ++row) {
        QList<SignalValuePair> values;
        values.reserve(signalIds.size());
        int index = 0;
        for (const ChamberSignal& signal : signalMap) {
            values.append(SignalValuePair(signal, QVariant(float(valueOf(row, index++)))));
        }
        recordsets.append(Recordset(-1, 1, timeOf(row), values, true, RecordsetComment(), RecordsetAlarm::NO_ALARM,
                                    QString(), ChamberOperationMode::MANUAL));
    }
    return recordsets;
}

// The floor of (a): the rows of makeRecordsets through one prepared statement
// of as many rows as the store puts in one, in one transaction.
double floorInsert(const QString& path, int rows, const char* journal)
{
    sqlite3* db = openC(path, journal);
    if (!db) {
        return -1;
    }
    const int columns = 6 + signalIds.size();
    const int perStatement = 999 / columns;
    const auto statementText = [&](int count) {
        QString text = QStringLiteral("INSERT INTO record_set (recording_id, record_time, is_retrieved_from_chamber,"
                                      " alarm_type, camera_image_path, chamber_mode");
        for (int index = 1; index <= signalIds.size(); ++index) {
            text += QStringLiteral(", signal_%1").arg(index);
        }
        text += QStringLiteral(") VALUES ");
        const QString group = QLatin1Char('(') + QStringLiteral("?,").repeated(columns - 1) + QStringLiteral("?)");
        for (int row = 0; row < count; ++row) {
            text += (row > 0 ? QStringLiteral(",") : QString()) + group;
        }
        return text.toUtf8();
    };
    // The times as the driver writes them, made before the clock starts.
    std::vector<QByteArray> times;
    times.reserve(rows);
    for (int row = 0; row < rows; ++row) {
        times.push_back(timeOf(row).toString(Qt::ISODateWithMs).toUtf8());
    }

    QElapsedTimer timer;
    timer.start();
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* full = nullptr;
    const QByteArray fullText = statementText(perStatement);
    sqlite3_prepare_v2(db, fullText.constData(), fullText.size(), &full, nullptr);
    int row = 0;
    bool ok = true;
    while (row < rows && ok) {
        const int count = std::min(perStatement, rows - row);
        sqlite3_stmt* statement = full;
        if (count < perStatement) {
            const QByteArray text = statementText(count);
            sqlite3_prepare_v2(db, text.constData(), text.size(), &statement, nullptr);
        }
        int parameter = 1;
        for (int r = row; r < row + count; ++r) {
            sqlite3_bind_int(statement, parameter++, 1);
            sqlite3_bind_text(statement, parameter++, times[r].constData(), times[r].size(), SQLITE_STATIC);
            sqlite3_bind_int(statement, parameter++, 1);
            sqlite3_bind_null(statement, parameter++);
            sqlite3_bind_null(statement, parameter++);
            sqlite3_bind_int(statement, parameter++, 1);
            for (int index = 0; index < signalIds.size(); ++index) {
                sqlite3_bind_double(statement, parameter++, valueOf(r, index));
            }
        }
        ok = sqlite3_step(statement) == SQLITE_DONE;
        sqlite3_reset(statement);
        if (statement != full) {
            sqlite3_finalize(statement);
        }
        row += count;
    }
    sqlite3_finalize(full);
    ok = ok && sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK;
    const double seconds = timer.nsecsElapsed() / 1e9;
    if (!ok) {
        out << "floor insert failed: " << sqlite3_errmsg(db) << Qt::endl;
    }
    sqlite3_close(db);
    return ok ? seconds : -1;
}

// The floor of the first read: the store's SELECT stepped through the C API,
// every column read by its type.
double floorRead(const QString& path, const QString& select, int& rowsRead)
{
    sqlite3* db = openC(path, "MEMORY");
    if (!db) {
        return -1;
    }
    const QByteArray text = select.toUtf8();
    sqlite3_stmt* statement = nullptr;
    QElapsedTimer timer;
    timer.start();
    sqlite3_prepare_v2(db, text.constData(), text.size(), &statement, nullptr);
    sqlite3_bind_int(statement, 1, 1);
    double checksum = 0;
    rowsRead = 0;
    const int columns = sqlite3_column_count(statement);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        for (int column = 0; column < columns; ++column) {
            switch (sqlite3_column_type(statement, column)) {
            case SQLITE_INTEGER:
                checksum += double(sqlite3_column_int64(statement, column));
                break;
            case SQLITE_FLOAT:
                checksum += sqlite3_column_double(statement, column);
                break;
            case SQLITE_TEXT:
                checksum += sqlite3_column_bytes(statement, column);
                break;
            default:
                break;
            }
        }
        ++rowsRead;
    }
    sqlite3_finalize(statement);
    const double seconds = timer.nsecsElapsed() / 1e9;
    sqlite3_close(db);
    return checksum >= 0 ? seconds : -1;
}

double cpuSeconds(const rusage& usage)
{
    return usage.ru_utime.tv_sec + usage.ru_utime.tv_usec / 1e6 + usage.ru_stime.tv_sec + usage.ru_stime.tv_usec / 1e6;
}

// How much more two threads of plain arithmetic get done than one, now: what
// the machine's other load leaves for the pool.
double twoThreadScaling()
{
    const auto spin = [] {
        volatile double sink = 0;
        double x = 0;
        for (long i = 0; i < 100000000; ++i) {
            x += i * 0.5;
        }
        sink = x;
        Q_UNUSED(sink)
    };
    QElapsedTimer timer;
    timer.start();
    spin();
    spin();
    const double serial = timer.nsecsElapsed();
    timer.restart();
    std::thread first(spin);
    std::thread second(spin);
    first.join();
    second.join();
    return serial / timer.nsecsElapsed();
}

template<typename Function>
double timed(Function function)
{
    QElapsedTimer timer;
    timer.start();
    function();
    return timer.nsecsElapsed() / 1e9;
}

QString rate(int rows, double seconds)
{
    return QStringLiteral("%1 rows/s").arg(qRound64(rows / seconds));
}

QString ms(double seconds)
{
    return QStringLiteral("%1 ms").arg(seconds * 1000, 0, 'f', seconds < 0.1 ? 2 : 0);
}

int run(int rows, const QString& only, const QString& folder, const QString& catalogue)
{
    const QString path = QStringLiteral("%1/application_%2.sqlite3").arg(folder).arg(rows);
    const QString floorDiskPath = QStringLiteral("%1/floor_disk_%2.sqlite3").arg(folder).arg(rows);
    const QString floorMemoryPath = QStringLiteral("%1/floor_memory_%2.sqlite3").arg(folder).arg(rows);
    if (!createApplication(path)) {
        out << "could not create the files" << Qt::endl;
        return 1;
    }
    out << "== " << rows << " rows of 20 signals" << Qt::endl;

    {
        // (a) The rows go in through the store in any case: the reads need
        // them. Each round writes to files of its own, fresh from the schema;
        // the best of three counts on each side.
        const int rounds = only.contains('a') ? 3 : 1;
        double store = 1e300;
        double floorDisk = 1e300;
        double floorMemory = 1e300;
        for (int round = 0; round < rounds; ++round) {
            const QString storePath = round == 0 ? path : QStringLiteral("%1.%2").arg(path).arg(round);
            if (round > 0 && !createApplication(storePath)) {
                return 1;
            }
            {
                Stores stores(storePath, catalogue);
                if (!stores.ok) {
                    out << "could not open the stores" << Qt::endl;
                    return 1;
                }
                QList<Recordset> recordsets =
                    makeRecordsets(rows, stores.recordsets.getRecordingSignalsAndColumnNames(RecordingId(1)).first);
                bool inserted = false;
                store = std::min(store, timed([&] { inserted = stores.recordsets.addRecordsToQuery(recordsets); }));
                if (!inserted || stores.recordsets.getRecordsetLenght(1) != rows) {
                    out << "addRecordsToQuery failed" << Qt::endl;
                    return 1;
                }
            }
            malloc_trim(0);
            if (only.contains('a')) {
                const QString disk = QStringLiteral("%1.%2").arg(floorDiskPath).arg(round);
                const QString memory = QStringLiteral("%1.%2").arg(floorMemoryPath).arg(round);
                if (!createApplication(disk) || !createApplication(memory)) {
                    return 1;
                }
                floorDisk = std::min(floorDisk, floorInsert(disk, rows, "DELETE"));
                floorMemory = std::min(floorMemory, floorInsert(memory, rows, "MEMORY"));
                QFile::remove(disk);
                QFile::remove(memory);
            }
            if (round > 0) {
                QFile::remove(storePath);
            }
        }
        if (only.contains('a')) {
            out << "(a) addRecordsToQuery: " << ms(store) << ", " << rate(rows, store) << Qt::endl;
            out << "    floor, journal on disk (as the store's transaction): " << ms(floorDisk) << ", "
                << rate(rows, floorDisk) << "; ratio " << QString::number(store / floorDisk, 'f', 2) << Qt::endl;
            out << "    floor, journal in memory: " << ms(floorMemory) << ", " << rate(rows, floorMemory) << "; ratio "
                << QString::number(store / floorMemory, 'f', 2) << Qt::endl;
        }
    }
    malloc_trim(0);

    if (only.contains('c') || only.contains('d')) {
        // (c) and (d): the first chart read fetches the rows and keeps them
        // (up to the cache's capacity); the following ones take them from there.
        Stores stores(path, catalogue);
        SqlRecordsetDatabaseConnection& store = stores.recordsets;
        const qint64 before = residentKiB();
        int points = 0;
        const double first = timed([&] { points = store.getRecordsets(RecordingId(1), 0, 0, 1000).size(); });
        malloc_trim(0);
        const qint64 cached = residentKiB();
        double chart = 1e300;
        for (int round = 0; round < 5; ++round) {
            chart = std::min(chart, timed([&] { store.getRecordsets(RecordingId(1), 0, 0, 1000); }));
        }
        if (only.contains('c')) {
            out << "(c) chart read of " << points << " points: " << ms(chart) << " (the first, fetching: " << ms(first)
                << ")" << Qt::endl;
        }
        if (only.contains('d')) {
            out << "(d) resident: " << before / 1024 << " MiB before the first read, " << cached / 1024
                << " MiB after it; " << (cached - before) * 1024 / std::max(rows, 1) << " bytes a row"
                << (rows > SqlRecordsetDatabaseConnection::rowCacheCapacity_ ? " (not cached: nothing kept)" : "")
                << Qt::endl;
        }
    }
    malloc_trim(0);

    if (only.contains('b')) {
        // (b) The first full read fetches the rows, the following ones take them from the cache.
        Stores stores(path, catalogue);
        SqlRecordsetDatabaseConnection& store = stores.recordsets;
        int count = 0;
        rusage before{};
        rusage after{};
        getrusage(RUSAGE_SELF, &before);
        // What a read gives is freed outside the clock. Each side has a round
        // to bring its memory in first (a million recordsets take 4 GB).
        QList<Recordset> kept;
        const double first = timed([&] { kept = store.getRecordsets(RecordingId(1), 0, 0, -1); });
        count = kept.size();
        kept.clear();
        getrusage(RUSAGE_SELF, &after);
        const QStringList columns = SqlRecordsetConversion::prepareColumnNames(
            store.getRecordingSignalsAndColumnNames(RecordingId(1)).second, true);
        SqlQuery select;
        select.selectColumns(columns)
            .fromTable(QStringLiteral("record_set"))
            .leftJoinOnMatch({{QStringLiteral("record_set"), QStringLiteral("id")},
                              {QStringLiteral("record_set_comment"), QStringLiteral("recordset_id")}})
            .whereColumn(QStringLiteral("recording_id"))
            .equals(1);
        int floorRows = 0;
        const double floor = floorRead(path, select.getPreparedQueryString(), floorRows);
        out << "(b) first full read (fetch, keep, convert on the pool): " << ms(first) << " for " << count
            << " rows; C API stepping the same SELECT: " << ms(floor) << " for " << floorRows << Qt::endl;
        double parallel = 1e300;
        double single = 1e300;
        double parallelCpu = 0;
        for (int round = 0; round < (rows <= 100000 ? 3 : 2); ++round) {
            getrusage(RUSAGE_SELF, &before);
            const double pool = timed([&] { kept = store.getRecordsets(RecordingId(1), 0, 0, -1); });
            kept.clear();
            getrusage(RUSAGE_SELF, &after);
            if (pool < parallel) {
                parallel = pool;
                parallelCpu = cpuSeconds(after) - cpuSeconds(before);
            }
            single = std::min(single, timed([&] { kept = store.getRecordsets(RecordingId(1), 0, 1, -1); }));
            kept.clear();
        }
        out << "    again"
            << (rows > SqlRecordsetDatabaseConnection::rowCacheCapacity_ ? " (not cached: fetched again)" : " (cached)")
            << ": on the pool " << ms(parallel) << " (" << QString::number(parallelCpu / parallel, 'f', 2)
            << " cores busy), on one thread " << ms(single) << "; speed-up "
            << QString::number(single / parallel, 'f', 2) << Qt::endl;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QList<int> sizes;
    QString only = QStringLiteral("abcd");
    for (const QString& argument : application.arguments().mid(1)) {
        if (argument.startsWith(QLatin1String("--only="))) {
            only = argument.mid(7);
        } else {
            sizes.append(argument.toInt());
        }
    }
    if (sizes.isEmpty()) {
        sizes = {10000, 100000, 800000, 1000000};
    }
    QTemporaryDir folder;
    const QString catalogue = folder.filePath(QStringLiteral("catalogue.sqlite3"));
    if (!createCatalogue(catalogue)) {
        out << "could not create the catalogue" << Qt::endl;
        return 1;
    }
    out << "threads: " << QThread::idealThreadCount() << "; two threads of arithmetic do "
        << QString::number(twoThreadScaling(), 'f', 2) << " times the work of one" << Qt::endl;
    for (int rows : sizes) {
        if (run(rows, only, folder.path(), catalogue) != 0) {
            return 1;
        }
        malloc_trim(0);
    }
    return 0;
}
