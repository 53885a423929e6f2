#pragma once

#include <QString>
#include <QStringList>

namespace zelmor::tools::databasetool {

// Where the chamber type catalogue is looked for when --catalogue doesn't
// name it: where chamber-simulator looks, relative to the working folder, so
// that both tools started in one folder read the same catalogue.
class CatalogueLocator
{
public:
    // The path under "General/ConfigDatabasePath" of "../ZELMOR4.ini" alone
    // when it is set; otherwise "database/configuration.sqlite3", then
    // "../../../database/configuration.sqlite3".
    static QStringList candidates();
};

} // namespace zelmor::tools::databasetool
