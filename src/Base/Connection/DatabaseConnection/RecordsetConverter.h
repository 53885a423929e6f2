#pragma once

#include "Domain/Types/Recordset.h"

#include <QList>
#include <QRunnable>
#include <QVariant>

#include <atomic>

namespace zelmor::base::connection::databaseconnection {

class SqlRecordsetConversion;

// The conversion of one raw row on a thread pool. The conversion must have
// resolved the row's recording before the pool starts this: run() asks no
// store and runs no statement. Not deleted by the pool.
//
//     RecordsetConverter* converter = new RecordsetConverter(row, conversion);
//     pool.start(converter);
//     ...
//     pool.waitForDone();
//     Recordset recordset = (*converter)();
class RecordsetConverter : public QRunnable
{
public:
    // The conversion must outlive this object and stay unchanged while it runs.
    RecordsetConverter(const QList<QVariant>& row, const SqlRecordsetConversion& conversion);
    ~RecordsetConverter() override;

    void run() override;
    // The recordset of the row, once run() has finished; empty before.
    zelmor::domain::types::Recordset operator()() const;

private:
    QList<QVariant> row;
    const SqlRecordsetConversion& conversion;
    zelmor::domain::types::Recordset result;
    // The pool's own locking orders the hand-over already; these make it
    // explicit in the language's memory model, where ThreadSanitizer sees it
    // (it can't look into the framework's mutexes).
    std::atomic<bool> started{false};
    std::atomic<bool> finished{false};
};

} // namespace zelmor::base::connection::databaseconnection
