#include "Domain/Types/AlarmType.h"

#include <QCoreApplication>

namespace zelmor::domain::types {

namespace {

const char* getSourceText(AlarmType::TypeId typeId)
{
    switch (typeId) {
    case AlarmType::NOT_DEFINED:
        return QT_TRANSLATE_NOOP("AlarmType", "Nicht definiert");
    case AlarmType::TOLERANCE_RANGE_VIOLATION:
    case AlarmType::TOLERANCE_RANGE_VIOLATION_2:
        return QT_TRANSLATE_NOOP("AlarmType", "Toleranzbandverletzung");
    case AlarmType::PROGRAM_EVENT:
        return QT_TRANSLATE_NOOP("AlarmType", "Programm-Ereignis");
    case AlarmType::CONNECTION_ALARM:
        return QT_TRANSLATE_NOOP("AlarmType", "Verbindungs-Alarm");
    case AlarmType::COLLECTIVE_ALARM:
        return QT_TRANSLATE_NOOP("AlarmType", "Collective Alarm");
    case AlarmType::SIREN_DESK_ALARM:
        return QT_TRANSLATE_NOOP("AlarmType", "SirenDesk Alarm");
    case AlarmType::SIREN_BOX_CONNECTION_ALARM:
        return QT_TRANSLATE_NOOP("AlarmType", "SirenBox Verbindungs-Alarm");
    case AlarmType::SIREN_BOX_PLAUSIBILITY_ALARM:
        return QT_TRANSLATE_NOOP("AlarmType", "SirenBox Plausibilitäts-Alarm");
    }
    return nullptr;
}

} // namespace

AlarmType::AlarmType(TypeId typeId)
    : typeId(typeId)
{
}

QString AlarmType::toUntranslatedString() const
{
    return QString::fromUtf8(getSourceText(typeId));
}

QString AlarmType::toString() const
{
    const char* const text = getSourceText(typeId);
    return text ? QCoreApplication::translate("AlarmType", text) : QString();
}

bool operator==(const AlarmType& left, const AlarmType& right)
{
    return left.typeId == right.typeId;
}

bool operator!=(const AlarmType& left, const AlarmType& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
