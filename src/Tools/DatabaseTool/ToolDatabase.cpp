#include "Tools/DatabaseTool/ToolDatabase.h"

#include "Tools/DatabaseTool/CatalogueLocator.h"
#include "Tools/DatabaseTool/ToolContext.h"

#include <QDir>
#include <QFileInfo>

namespace zelmor::tools::databasetool {

using zelmor::base::connection::databaseconnection::DatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::domain::types::DatabaseConnectionError;

namespace {

// The names of the connections of the framework, one set per process.
const char applicationConnection[] = "zelmor-db";
const char catalogueConnection[] = "zelmor-db-catalogue";

} // namespace

ToolDatabase::ToolDatabase(const QString& key, const QString& cataloguePath, QObject* parent)
    : QObject(parent)
    , key_(key)
    , cataloguePath_(cataloguePath)
    , file_(QLatin1String(applicationConnection))
    , catalogue_(QLatin1String(catalogueConnection))
    , facade_(false)
{
    // Both connections exist from here on; a closed one only fails when used.
    facade_.setDependencies(&file_.connection(), &catalogue_.connection());
    const auto count = [this](DatabaseConnectionError error) { errors_.append(int(error)); };
    connect(&facade_, &DatabaseConnection::error, this, count);
    // A statement that fails is told by the connection, and not passed on by every store.
    connect(&file_.connection(), &SqliteConnection::error, this, count);
    connect(&catalogue_.connection(), &SqliteConnection::error, this, count);
}

CommandOutcome ToolDatabase::openUnchecked(const QString& path, const QString& shownName, DatabaseFile::Access access)
{
    return file_.open(path, shownName, key_, access);
}

CommandOutcome ToolDatabase::open(const QString& path, const QString& shownName, DatabaseFile::Access access,
                                  CatalogueUse catalogueUse)
{
    CommandOutcome outcome = openUnchecked(path, shownName, access);
    if (outcome.isSuccess())
        outcome = file_.checkVersion();
    if (outcome.isSuccess())
        outcome = openCatalogue(catalogueUse);
    // What the tests on the way said is in the outcome; from here on errors are the command's.
    clearErrors();
    return outcome;
}

CommandOutcome ToolDatabase::openCatalogue(CatalogueUse use)
{
    if (use == WITHOUT_CATALOGUE)
        return CommandOutcome::success();
    const bool named = !cataloguePath_.isEmpty();
    const QStringList candidates = named ? QStringList{cataloguePath_} : CatalogueLocator::candidates();
    QStringList tried;
    for (const QString& candidate : candidates) {
        if (!named && !QFileInfo::exists(candidate)) {
            tried.append(candidate);
            continue;
        }
        // The catalogue is the simulator's: its key is always the fixed one.
        CommandOutcome outcome =
            catalogue_.open(candidate, candidate, QLatin1String(ToolContext::fixedKey_), DatabaseFile::READ_ONLY);
        if (outcome.isSuccess()
            && !catalogue_.connection().containsTable(DatabaseConnection::lookupChamberTypeTableName()))
            outcome = CommandOutcome::failure(
                NO_CATALOGUE, candidate + QStringLiteral(": not a chamber type catalogue (no table chamber_type)"));
        if (outcome.isSuccess()) {
            hasCatalogue_ = true;
            catalogueName_ = candidate;
            return outcome;
        }
        catalogue_.close();
        // Only a catalogue that was named, or found where the simulator would read it, is worth a word.
        if (use == CATALOGUE_NEEDED || named)
            return CommandOutcome::failure(NO_CATALOGUE, outcome.message);
        tried.append(candidate);
    }
    if (use == CATALOGUE_IF_FOUND)
        return CommandOutcome::success();
    return CommandOutcome::failure(NO_CATALOGUE,
                                   QStringLiteral("no chamber type catalogue found (looked for %1 in %2); "
                                                  "name one with --catalogue")
                                       .arg(tried.join(QStringLiteral(" and ")), QDir::currentPath()));
}

void ToolDatabase::close()
{
    file_.close();
    catalogue_.close();
    hasCatalogue_ = false;
}

} // namespace zelmor::tools::databasetool
