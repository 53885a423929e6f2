#include "Tools/DatabaseTool/ScratchFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelmor::tools::databasetool {

namespace {

constexpr qint64 copyBlock = 1 << 20;

QString resolved(const QString& target)
{
    const QFileInfo info(target);
    return info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
}

QString scratchTemplate(const QString& target)
{
    const QFileInfo info(target);
    return info.absoluteDir().filePath(QLatin1Char('.') + info.fileName() + QStringLiteral(".zelmor-db-XXXXXX"));
}

} // namespace

ScratchFile::ScratchFile(const QString& target, const QString& shownName)
    : target_(resolved(target))
    , shownName_(shownName)
    , scratch_(scratchTemplate(target_))
{
}

CommandOutcome ScratchFile::failure(ExitStatus status, const QString& what) const
{
    return CommandOutcome::failure(status, shownName_ + QStringLiteral(": ") + what);
}

CommandOutcome ScratchFile::createEmpty()
{
    if (!scratch_.open())
        return failure(CANNOT_OPEN, QStringLiteral("can't write in its folder (%1)").arg(scratch_.errorString()));
    // A temporary file is the owner's alone; a new database gets what any new file gets.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(scratch_.handle(), 0666 & ~mask);
    scratch_.close();
    return CommandOutcome::success();
}

CommandOutcome ScratchFile::copyTarget()
{
    QFile source(target_);
    if (!source.open(QIODevice::ReadOnly))
        return failure(CANNOT_OPEN, QStringLiteral("can't be read (%1)").arg(source.errorString()));
    const QFileInfo before(source);
    if (!scratch_.open())
        return failure(CANNOT_OPEN,
                       QStringLiteral("can't write in its folder for a working copy (%1)").arg(scratch_.errorString()));
    while (!source.atEnd()) {
        const QByteArray block = source.read(copyBlock);
        if (block.isEmpty() && source.error() != QFileDevice::NoError)
            return failure(CANNOT_OPEN, QStringLiteral("can't be read (%1)").arg(source.errorString()));
        if (scratch_.write(block) != block.size())
            return failure(CANNOT_OPEN,
                           QStringLiteral("no room for a working copy beside it (%1)").arg(scratch_.errorString()));
    }
    scratch_.setPermissions(source.permissions());
    scratch_.close();
    copiedSize_ = before.size();
    copiedModified_ = before.lastModified();
    return CommandOutcome::success();
}

CommandOutcome ScratchFile::replaceTarget()
{
    const QFileInfo now(target_);
    if (!now.exists() || now.size() != copiedSize_ || now.lastModified() != copiedModified_)
        return failure(COMMAND_FAILED, QStringLiteral("changed while zelmor-db worked on it; nothing of this run "
                                                      "is written (is the monitoring application running?)"));
    if (!syncToDisk(path()))
        return failure(CANNOT_OPEN, QStringLiteral("the working copy can't be written to disk"));
    if (std::rename(QFile::encodeName(path()).constData(), QFile::encodeName(target_).constData()) != 0)
        return failure(CANNOT_OPEN,
                       QStringLiteral("can't be replaced: %1").arg(QString::fromLocal8Bit(std::strerror(errno))));
    scratch_.setAutoRemove(false);
    syncFolder();
    return CommandOutcome::success();
}

CommandOutcome ScratchFile::publishAsNew()
{
    if (!syncToDisk(path()))
        return failure(CANNOT_OPEN, QStringLiteral("can't be written to disk"));
    const QByteArray from = QFile::encodeName(path());
    const QByteArray to = QFile::encodeName(target_);
    // A hard link never replaces a file that appeared meanwhile; where the
    // file system has none, a rename after a last look has to do.
    if (::link(from.constData(), to.constData()) != 0) {
        const int reason = errno;
        const bool noLinks = reason == EPERM || reason == EOPNOTSUPP || reason == EMLINK;
        if (!noLinks || QFileInfo::exists(target_) || std::rename(from.constData(), to.constData()) != 0)
            return failure(CANNOT_OPEN,
                           QStringLiteral("can't be made: %1").arg(QString::fromLocal8Bit(std::strerror(reason))));
        scratch_.setAutoRemove(false);
    }
    syncFolder();
    return CommandOutcome::success();
}

bool ScratchFile::syncToDisk(const QString& path) const
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool synced = ::fsync(descriptor) == 0;
    ::close(descriptor);
    return synced;
}

void ScratchFile::syncFolder() const
{
    // Makes the rename itself last; a folder that can't be synced only loses that.
    const int descriptor =
        ::open(QFile::encodeName(QFileInfo(target_).absolutePath()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

} // namespace zelmor::tools::databasetool
