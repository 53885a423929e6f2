#pragma once

#include <QMap>
#include <QPair>
#include <QString>

#include <functional>

namespace zelmor::domain::types {

// The physical units of chamber signals and the conversions between units of one
// quantity. Static members only.
class Unit
{
public:
    // The numbers are fixed: the catalogue and the simulator's defaults branch on them.
    // Typed so that a number from the database outside the list is still a value.
    enum UnitId : int {
        CELSIUS = 0,
        FAHRENHEIT = 1,
        KELVIN = 2,
        RELATIVE_HUMIDITY_RF = 3, // "% r.F."
        RELATIVE_HUMIDITY_RH = 4, // "% r.H."
        PERCENT = 5,
        VOLUME_PERCENT = 6,
        HECTOPASCAL = 7,
        MILLIBAR = 8,
        KILOLUX = 9,
        MEGALUX_HOURS = 10,
        WATT_PER_SQUARE_METRE = 11,
        WATT_HOURS_PER_SQUARE_METRE = 12,
        BOOLEAN = 13,
        VOLT = 14,
        DIMENSIONLESS = 15,
        UNDEFINED = 16
    };

    using Converter = std::function<float(float)>;
    using ConverterKey = QPair<UnitId, UnitId>;

    Unit() = delete;

    // Text of every unit as the catalogue spells it; built on the first call.
    static const QMap<UnitId, QString>& getNameIdMapping();

    // (from, to) -> conversion, single precision. Filled before main.
    static const QMap<ConverterKey, Converter> converters_;

    static float identityConverter_(float value);
    static float nullConverter_(float value);
    static float nanConverter_(float value);

    // Equal units pass the value untouched; a pair without a conversion gives NaN.
    static float convert(UnitId from, UnitId to, float value);

    // The unit's text; BOOLEAN and unknown numbers give the empty text.
    static QString toString(UnitId unit);

    // First unit (ascending) whose text matches exactly; UNDEFINED when none does.
    // The empty text is DIMENSIONLESS.
    static UnitId toUnitId(const QString& text);

    static bool isTemperature(UnitId unit);
    static bool isHumidity(UnitId unit);
    static bool isLight(UnitId unit);
};

} // namespace zelmor::domain::types
