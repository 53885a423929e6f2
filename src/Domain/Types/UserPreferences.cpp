#include "Domain/Types/UserPreferences.h"

namespace zelmor::domain::types {

UserPreferences::UserPreferences()
    : UserPreferences(PDF_FILE, QLocale::AnyLanguage, QString(), QString(), QChar(), Unit::UNDEFINED, Unit::UNDEFINED)
{
}

UserPreferences::UserPreferences(FileFormat fileFormat, QLocale::Language language, const QString& timeFormat,
                                 const QString& dateFormat, QChar decimalSeparator, Unit::UnitId temperatureUnit,
                                 Unit::UnitId humidityUnit)
    : fileFormat(fileFormat)
    , language(language)
    , timeFormat(timeFormat)
    , dateFormat(dateFormat)
    , decimalSeparator(decimalSeparator)
    , temperatureUnit(temperatureUnit)
    , humidityUnit(humidityUnit)
{
}

void UserPreferences::setOldPreferences(const UserPreferences& old)
{
    UserPreferences copy(old);
    copy.oldPreferences_.reset();
    oldPreferences_ = QSharedPointer<const UserPreferences>::create(copy);
}

bool UserPreferences::hasOldPreferences() const
{
    return !oldPreferences_.isNull();
}

UserPreferences UserPreferences::getOldPreferences() const
{
    if (oldPreferences_) {
        return *oldPreferences_;
    }
    UserPreferences copy(*this);
    copy.oldPreferences_.reset();
    return copy;
}

bool operator==(const UserPreferences& left, const UserPreferences& right)
{
    return left.fileFormat == right.fileFormat && left.language == right.language && left.timeFormat == right.timeFormat
           && left.dateFormat == right.dateFormat && left.decimalSeparator == right.decimalSeparator
           && left.temperatureUnit == right.temperatureUnit && left.humidityUnit == right.humidityUnit;
}

bool operator!=(const UserPreferences& left, const UserPreferences& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
