#pragma once

#include "Domain/Types/FileFormat.h"

#include <QLocale>
#include <QMetaType>
#include <QSharedPointer>
#include <QString>

namespace zelmor::domain::types {

// How the automatic reports of recordings are made: the "report_" columns of the
// global settings.
class ReportConfiguration
{
public:
    enum Interval : int { DAILY = 0, WEEKLY = 1, MONTHLY = 2 };

    // The bit of each chapter in enabledChapters.
    enum Chapter : int {
        SUMMARY = 0,
        RELEASE = 1,
        NOTES = 2,
        LIMIT_ALARMS = 3,
        ALARMS = 4,
        PICTURES = 5,
        GRAPHIC = 6,
        TABLE = 7
    };

    // Daily, any language, the first file format, no texts or paths, logo
    // position 0, no chapters.
    ReportConfiguration();
    ReportConfiguration(Interval interval, QLocale::Language language, FileFormat fileFormat, const QString& filePrefix,
                        const QString& filePath, const QString& headerLogoPath, int headerLogoPosition,
                        const QString& headerTitle, const QString& watermarkPath, int enabledChapters,
                        const QString& watermarkText);

    bool isChapterEnabled(Chapter chapter) const;
    bool isSummaryEnabled() const;
    bool isReleaseEnabled() const;
    bool isNotesEnabled() const;
    bool isLimiAlarmsEnabled() const;
    bool isAlarmEnabled() const;
    bool isPicturesEnabled() const;
    bool isGraphicEnabled() const;
    bool isTableEnabled() const;

    // Keeps a copy of an earlier configuration, so that what was changed can be
    // told afterwards. The copy's own earlier configuration isn't kept.
    void setOldConfiguration(const ReportConfiguration& old);
    bool hasOldConfiguration() const;
    // The copy kept by setOldConfiguration; the configuration itself without one.
    ReportConfiguration getOldConfiguration() const;

    Interval interval;
    QLocale::Language language;
    FileFormat fileFormat;
    QString filePrefix;
    QString filePath;
    QString headerLogoPath;
    int headerLogoPosition;
    QString headerTitle;
    QString watermarkPath;
    int enabledChapters; // a bit for each Chapter
    QString watermarkText;

private:
    QSharedPointer<const ReportConfiguration> oldConfiguration_;
};

// The present values only; the earlier ones don't count.
bool operator==(const ReportConfiguration& left, const ReportConfiguration& right);
bool operator!=(const ReportConfiguration& left, const ReportConfiguration& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::ReportConfiguration)
