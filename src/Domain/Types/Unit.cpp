#include "Domain/Types/Unit.h"

#include <QList>

#include <limits>

namespace zelmor::domain::types {

namespace {

// Single-precision 5/9; its bit pattern is 0x3F0E38E4.
constexpr float fiveNinths = 0.5555556f;

QMap<Unit::ConverterKey, Unit::Converter> buildConverters()
{
    QMap<Unit::ConverterKey, Unit::Converter> converters;
    converters.insert({Unit::CELSIUS, Unit::FAHRENHEIT}, [](float x) { return 1.8f * x + 32.0f; });
    converters.insert({Unit::CELSIUS, Unit::KELVIN}, [](float x) { return 273.15f + x; });
    converters.insert({Unit::FAHRENHEIT, Unit::CELSIUS}, [](float x) { return (x - 32.0f) * fiveNinths; });
    converters.insert({Unit::FAHRENHEIT, Unit::KELVIN}, [](float x) { return (459.67f + x) * fiveNinths; });
    converters.insert({Unit::KELVIN, Unit::CELSIUS}, [](float x) { return x - 273.15f; });
    converters.insert({Unit::KELVIN, Unit::FAHRENHEIT}, [](float x) { return 1.8f * x - 459.67f; });
    converters.insert({Unit::HECTOPASCAL, Unit::MILLIBAR}, &Unit::identityConverter_);
    converters.insert({Unit::MILLIBAR, Unit::HECTOPASCAL}, &Unit::identityConverter_);
    converters.insert({Unit::RELATIVE_HUMIDITY_RF, Unit::RELATIVE_HUMIDITY_RH}, &Unit::identityConverter_);
    converters.insert({Unit::RELATIVE_HUMIDITY_RH, Unit::RELATIVE_HUMIDITY_RF}, &Unit::identityConverter_);
    return converters;
}

} // namespace

const QMap<Unit::ConverterKey, Unit::Converter> Unit::converters_ = buildConverters();

float Unit::identityConverter_(float value)
{
    return value;
}

float Unit::nullConverter_(float)
{
    return 0.0f;
}

float Unit::nanConverter_(float)
{
    return std::numeric_limits<float>::quiet_NaN();
}

const QMap<Unit::UnitId, QString>& Unit::getNameIdMapping()
{
    static const QMap<UnitId, QString> mapping = {
        {CELSIUS, QString::fromUtf8("°C")},
        {FAHRENHEIT, QString::fromUtf8("°F")},
        {KELVIN, QStringLiteral("K")},
        {RELATIVE_HUMIDITY_RF, QStringLiteral("% r.F.")},
        {RELATIVE_HUMIDITY_RH, QStringLiteral("% r.H.")},
        {PERCENT, QStringLiteral("%")},
        {VOLUME_PERCENT, QStringLiteral("Vol.-%")},
        {HECTOPASCAL, QStringLiteral("hPa")},
        {MILLIBAR, QStringLiteral("mbar")},
        {KILOLUX, QStringLiteral("kLUX")},
        {MEGALUX_HOURS, QStringLiteral("Mluxh")},
        {WATT_PER_SQUARE_METRE, QString::fromUtf8("W/m²")},
        {WATT_HOURS_PER_SQUARE_METRE, QString::fromUtf8("Wh/m²")},
        {BOOLEAN, QStringLiteral("BOOL")},
        {VOLT, QStringLiteral("V")},
        {DIMENSIONLESS, QString()},
        {UNDEFINED, QString()},
    };
    return mapping;
}

float Unit::convert(UnitId from, UnitId to, float value)
{
    if (from == to) {
        return value;
    }
    const auto converter = converters_.value({from, to}, &Unit::nanConverter_);
    return converter(value);
}

QString Unit::toString(UnitId unit)
{
    // the boolean unit has a name for the catalogue, but nothing to show
    if (unit == BOOLEAN) {
        return QString();
    }
    return getNameIdMapping().value(unit);
}

Unit::UnitId Unit::toUnitId(const QString& text)
{
    const auto& mapping = getNameIdMapping();
    for (auto it = mapping.cbegin(); it != mapping.cend(); ++it) {
        // empty and null texts both find DIMENSIONLESS
        if (it.value() == text) {
            return it.key();
        }
    }
    return UNDEFINED;
}

bool Unit::isTemperature(UnitId unit)
{
    static const QList<UnitId> units = {CELSIUS, FAHRENHEIT, KELVIN};
    return units.contains(unit);
}

bool Unit::isHumidity(UnitId unit)
{
    static const QList<UnitId> units = {RELATIVE_HUMIDITY_RF, RELATIVE_HUMIDITY_RH};
    return units.contains(unit);
}

bool Unit::isLight(UnitId unit)
{
    static const QList<UnitId> units = {KILOLUX, MEGALUX_HOURS};
    return units.contains(unit);
}

} // namespace zelmor::domain::types
