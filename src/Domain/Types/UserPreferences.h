#pragma once

#include "Domain/Types/FileFormat.h"
#include "Domain/Types/Unit.h"

#include <QChar>
#include <QLocale>
#include <QMetaType>
#include <QSharedPointer>
#include <QString>

namespace zelmor::domain::types {

// How a user wants values shown and files written: a row of table "user_preferences".
class UserPreferences
{
public:
    // Nothing chosen: the first file format, any language, empty formats, no
    // separator, UNDEFINED units.
    UserPreferences();
    UserPreferences(FileFormat fileFormat, QLocale::Language language, const QString& timeFormat,
                    const QString& dateFormat, QChar decimalSeparator, Unit::UnitId temperatureUnit,
                    Unit::UnitId humidityUnit);

    // Keeps a copy of earlier preferences, so that what a user changed can be told
    // afterwards. The copy's own earlier preferences aren't kept.
    void setOldPreferences(const UserPreferences& old);
    bool hasOldPreferences() const;
    // The copy kept by setOldPreferences; the preferences themselves without one.
    UserPreferences getOldPreferences() const;

    FileFormat fileFormat;
    QLocale::Language language;
    QString timeFormat;
    QString dateFormat;
    QChar decimalSeparator;
    Unit::UnitId temperatureUnit;
    Unit::UnitId humidityUnit;

private:
    QSharedPointer<const UserPreferences> oldPreferences_;
};

// The present values only; the earlier ones don't count.
bool operator==(const UserPreferences& left, const UserPreferences& right);
bool operator!=(const UserPreferences& left, const UserPreferences& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::UserPreferences)
