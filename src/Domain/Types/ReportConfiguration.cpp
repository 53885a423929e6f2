#include "Domain/Types/ReportConfiguration.h"

namespace zelmor::domain::types {

ReportConfiguration::ReportConfiguration()
    : ReportConfiguration(DAILY, QLocale::AnyLanguage, PDF_FILE, QString(), QString(), QString(), 0, QString(),
                          QString(), 0, QString())
{
}

ReportConfiguration::ReportConfiguration(Interval interval, QLocale::Language language, FileFormat fileFormat,
                                         const QString& filePrefix, const QString& filePath,
                                         const QString& headerLogoPath, int headerLogoPosition,
                                         const QString& headerTitle, const QString& watermarkPath, int enabledChapters,
                                         const QString& watermarkText)
    : interval(interval)
    , language(language)
    , fileFormat(fileFormat)
    , filePrefix(filePrefix)
    , filePath(filePath)
    , headerLogoPath(headerLogoPath)
    , headerLogoPosition(headerLogoPosition)
    , headerTitle(headerTitle)
    , watermarkPath(watermarkPath)
    , enabledChapters(enabledChapters)
    , watermarkText(watermarkText)
{
}

bool ReportConfiguration::isChapterEnabled(Chapter chapter) const
{
    return ((enabledChapters >> chapter) & 1) != 0;
}

bool ReportConfiguration::isSummaryEnabled() const
{
    return isChapterEnabled(SUMMARY);
}

bool ReportConfiguration::isReleaseEnabled() const
{
    return isChapterEnabled(RELEASE);
}

bool ReportConfiguration::isNotesEnabled() const
{
    return isChapterEnabled(NOTES);
}

bool ReportConfiguration::isLimiAlarmsEnabled() const
{
    return isChapterEnabled(LIMIT_ALARMS);
}

bool ReportConfiguration::isAlarmEnabled() const
{
    return isChapterEnabled(ALARMS);
}

bool ReportConfiguration::isPicturesEnabled() const
{
    return isChapterEnabled(PICTURES);
}

bool ReportConfiguration::isGraphicEnabled() const
{
    return isChapterEnabled(GRAPHIC);
}

bool ReportConfiguration::isTableEnabled() const
{
    return isChapterEnabled(TABLE);
}

void ReportConfiguration::setOldConfiguration(const ReportConfiguration& old)
{
    ReportConfiguration copy(old);
    copy.oldConfiguration_.reset();
    oldConfiguration_ = QSharedPointer<const ReportConfiguration>::create(copy);
}

bool ReportConfiguration::hasOldConfiguration() const
{
    return !oldConfiguration_.isNull();
}

ReportConfiguration ReportConfiguration::getOldConfiguration() const
{
    if (oldConfiguration_) {
        return *oldConfiguration_;
    }
    ReportConfiguration copy(*this);
    copy.oldConfiguration_.reset();
    return copy;
}

bool operator==(const ReportConfiguration& left, const ReportConfiguration& right)
{
    return left.interval == right.interval && left.language == right.language && left.fileFormat == right.fileFormat
           && left.filePrefix == right.filePrefix && left.filePath == right.filePath
           && left.headerLogoPath == right.headerLogoPath && left.headerLogoPosition == right.headerLogoPosition
           && left.headerTitle == right.headerTitle && left.watermarkPath == right.watermarkPath
           && left.enabledChapters == right.enabledChapters && left.watermarkText == right.watermarkText;
}

bool operator!=(const ReportConfiguration& left, const ReportConfiguration& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
