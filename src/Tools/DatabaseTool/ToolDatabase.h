#pragma once

#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"
#include "Tools/DatabaseTool/CommandOutcome.h"
#include "Tools/DatabaseTool/DatabaseFile.h"

#include <QList>
#include <QObject>
#include <QString>

namespace zelmor::tools::databasetool {

// The facade wired as the monitoring application wires it: to the
// application database a command works on and to the chamber type
// catalogue. The error signals are counted, for a store that gives an empty
// result can't otherwise be told from one that failed.
//
// initialize() isn't called here: on a user's file it writes (a settings
// row, missing tables), and the commands that only read must not write.
class ToolDatabase : public QObject
{
    Q_OBJECT

public:
    enum CatalogueUse { WITHOUT_CATALOGUE, CATALOGUE_IF_FOUND, CATALOGUE_NEEDED };

    // The catalogue as --catalogue names it; empty: looked for as the simulator looks.
    ToolDatabase(const QString& key, const QString& cataloguePath, QObject* parent = nullptr);

    // Opens the file at path (FILE, or a working copy of it, shown as FILE),
    // checks its schema version, then the catalogue as asked for.
    CommandOutcome open(const QString& path, const QString& shownName, DatabaseFile::Access access,
                        CatalogueUse catalogueUse);
    // Only the file, without any test beyond decrypting it.
    CommandOutcome openUnchecked(const QString& path, const QString& shownName, DatabaseFile::Access access);
    CommandOutcome openCatalogue(CatalogueUse use);

    zelmor::base::connection::databaseconnection::DatabaseConnection& facade() { return facade_; }
    DatabaseFile& file() { return file_; }
    bool hasCatalogue() const { return hasCatalogue_; }
    QString catalogueName() const { return catalogueName_; }

    // The codes of the error signals of the facade and the two connections
    // since the last clearErrors(); open() starts afresh.
    QList<int> errors() const { return errors_; }
    bool hasErrors() const { return !errors_.isEmpty(); }
    void clearErrors() { errors_.clear(); }

    void close();

private:
    QString key_;
    QString cataloguePath_;
    DatabaseFile file_;
    DatabaseFile catalogue_;
    zelmor::base::connection::databaseconnection::DatabaseConnection facade_;
    bool hasCatalogue_ = false;
    QString catalogueName_;
    QList<int> errors_;
};

} // namespace zelmor::tools::databasetool
