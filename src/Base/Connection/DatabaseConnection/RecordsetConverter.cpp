#include "Base/Connection/DatabaseConnection/RecordsetConverter.h"

#include "Base/Connection/DatabaseConnection/SqlRecordsetConversion.h"

namespace zelmor::base::connection::databaseconnection {

using zelmor::domain::types::Recordset;

RecordsetConverter::RecordsetConverter(const QList<QVariant>& row, const SqlRecordsetConversion& conversion)
    : row(row)
    , conversion(conversion)
{
    setAutoDelete(false);
    started.store(true, std::memory_order_release);
}

RecordsetConverter::~RecordsetConverter() = default;

void RecordsetConverter::run()
{
    if (started.load(std::memory_order_acquire)) {
        result = conversion.convertResolved(row);
    }
    finished.store(true, std::memory_order_release);
}

Recordset RecordsetConverter::operator()() const
{
    return finished.load(std::memory_order_acquire) ? result : Recordset();
}

} // namespace zelmor::base::connection::databaseconnection
