#include "Tools/DatabaseTool/CatalogueLocator.h"

#include <QSettings>

namespace zelmor::tools::databasetool {

namespace {

const char iniFile[] = "../ZELMOR4.ini";
const char iniDatabasePathKey[] = "General/ConfigDatabasePath";

} // namespace

QStringList CatalogueLocator::candidates()
{
    QSettings settings(QLatin1String(iniFile), QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    const QString iniPath = settings.value(QLatin1String(iniDatabasePathKey), QString()).toString();
    // A path in the ini file is the only one the simulator tries.
    if (!iniPath.isEmpty())
        return {iniPath};
    return {QStringLiteral("database/configuration.sqlite3"),
            QStringLiteral("../../../database/configuration.sqlite3")};
}

} // namespace zelmor::tools::databasetool
