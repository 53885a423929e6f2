#include "Domain/Types/BackupCleanupSettings.h"

namespace zelmor::domain::types {

BackupCleanupSettings::BackupCleanupSettings()
    : BackupCleanupSettings(ALL, 0)
{
}

BackupCleanupSettings::BackupCleanupSettings(KeepStrategy keepStrategy, int numberToKeep)
    : keepStrategy(keepStrategy)
    , numberToKeep(numberToKeep)
{
}

bool operator==(const BackupCleanupSettings& left, const BackupCleanupSettings& right)
{
    return left.keepStrategy == right.keepStrategy && left.numberToKeep == right.numberToKeep;
}

bool operator!=(const BackupCleanupSettings& left, const BackupCleanupSettings& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
