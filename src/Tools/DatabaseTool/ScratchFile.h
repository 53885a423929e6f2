#pragma once

#include "Tools/DatabaseTool/CommandOutcome.h"

#include <QDateTime>
#include <QString>
#include <QTemporaryFile>

namespace zelmor::tools::databasetool {

// A file beside a target file that takes the target's place only when all
// the work on it succeeded: the target is either left as it was, byte for
// byte, or replaced whole in one rename. A run that breaks off leaves the
// target alone and at worst a hidden ".NAME.zelmor-db-XXXXXX" beside it.
// The scratch file goes when the object goes, unless it took the target's place.
//
//     ScratchFile scratch(path, shownName);
//     scratch.copyTarget();        // or createEmpty() for a new file
//     ... work on scratch.path() ...
//     scratch.replaceTarget();     // or publishAsNew()
class ScratchFile
{
public:
    // A symbolic link as target stays: the file it points to is replaced.
    ScratchFile(const QString& target, const QString& shownName);

    // An empty scratch file.
    CommandOutcome createEmpty();
    // A copy of the target, with its permissions.
    CommandOutcome copyTarget();
    QString path() const { return scratch_.fileName(); }

    // The scratch file, on disk, in place of the target. Refused when the
    // target changed since copyTarget(): someone else wrote to it meanwhile,
    // and those writes must not be lost.
    CommandOutcome replaceTarget();
    // The scratch file, on disk, as the target, which must still not exist.
    CommandOutcome publishAsNew();

private:
    CommandOutcome failure(ExitStatus status, const QString& what) const;
    bool syncToDisk(const QString& path) const;
    void syncFolder() const;

    QString target_;
    QString shownName_;
    QTemporaryFile scratch_;
    qint64 copiedSize_ = -1;
    QDateTime copiedModified_;
};

} // namespace zelmor::tools::databasetool
