#pragma once

#include <QMetaType>
#include <QObject>

namespace zelmor::domain::types {

// Which old backups are kept: the columns "backup_keep_strategy" and
// "backup_keep_num" of the global settings.
class BackupCleanupSettings
{
    Q_GADGET

public:
    // Registered, so that the numbers of the database convert to it through QVariant::convert.
    enum KeepStrategy : int { ALL = 0, KEEP_N_BACKUPS = 1, KEEP_N_DAYS = 2 };
    Q_ENUM(KeepStrategy)

    // Keep all, number 0.
    BackupCleanupSettings();
    BackupCleanupSettings(KeepStrategy keepStrategy, int numberToKeep);

    KeepStrategy keepStrategy;
    // Backups or days, as the strategy says; not looked at for ALL.
    int numberToKeep;
};

bool operator==(const BackupCleanupSettings& left, const BackupCleanupSettings& right);
bool operator!=(const BackupCleanupSettings& left, const BackupCleanupSettings& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::BackupCleanupSettings)
