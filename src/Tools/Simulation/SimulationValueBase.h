#pragma once

#include "Tools/Simulation/SimulationReader.h"
#include "Tools/Simulation/SimulationValue.h"

#include <QVariant>

#include <climits>
#include <cmath>
#include <type_traits>

namespace zelmor::simulation {

namespace lagarithmetic {

// The distance set - current as a float, in the width the controller's
// integer types suggest: narrow types widen to int, int wraps in 32 bits,
// unsigned int wraps unsigned (a falling value then climbs through the top
// of the range until the ten-time-constants rule lands it).
inline float difference(int set, int current)
{
    return static_cast<float>(static_cast<int>(static_cast<unsigned int>(set) - static_cast<unsigned int>(current)));
}

inline float difference(unsigned int set, unsigned int current)
{
    return static_cast<float>(set - current);
}

template<typename T>
float difference(T set, T current)
{
    return static_cast<float>(static_cast<int>(set) - static_cast<int>(current));
}

// Truncation toward zero; outside the int range (and NaN) gives INT_MIN.
inline int truncateToInt(float value)
{
    if (value >= -2147483648.0f && value < 2147483648.0f)
        return static_cast<int>(value);
    return INT_MIN;
}

// Back from the float result of a step: narrow types keep the low bits of
// the int, unsigned int the low 32 bits of a 64-bit truncation, bool is
// true for anything but 0.0.
template<typename T>
T fromFloat(float value)
{
    static_assert(std::is_integral<T>::value, "integer family only");
    return static_cast<T>(static_cast<typename std::make_unsigned<T>::type>(truncateToInt(value)));
}

template<>
inline int fromFloat<int>(float value)
{
    return truncateToInt(value);
}

template<>
inline unsigned int fromFloat<unsigned int>(float value)
{
    qint64 truncated = LLONG_MIN;
    if (value >= -9223372036854775808.0f && value < 9223372036854775808.0f)
        truncated = static_cast<qint64>(value);
    return static_cast<unsigned int>(static_cast<quint64>(truncated));
}

template<>
inline bool fromFloat<bool>(float value)
{
    return value != 0.0f;
}

} // namespace lagarithmetic

// An integer simulated value: the process value follows the set value with
// a first-order lag, advanced only when the process value is read or the set
// value written. A time constant of 0 or less makes it follow at once.
//
// The set address reads and writes the set value, the current address only
// reads the process value. getType is a read, with the same effect on time.
template<typename T>
class SimulationValueBase : public SimulationValue, public SimulationReader
{
public:
    SimulationValueBase(T current, T set, float timeConstant, int setAddress, int currentAddress)
        : setValue(set)
        , currentValue(current)
        , timeConstant(timeConstant)
        , setAddress(setAddress)
        , currentAddress(currentAddress)
    {
    }

    QVariant read(int address) override
    {
        // The set address first: a value whose two addresses are equal
        // answers with its set value and never advances.
        if (address == noAddress_)
            return QVariant();
        if (address == setAddress)
            return QVariant::fromValue(setValue);
        if (address == currentAddress) {
            catchUp();
            return QVariant::fromValue(currentValue);
        }
        return QVariant();
    }

    // Any value is taken: toInt, then the low bits; what doesn't convert is 0.
    bool write(int address, QVariant value) override
    {
        if (address != setAddress || address == noAddress_)
            return false;
        T const converted = static_cast<T>(value.toInt());
        // The process value keeps the path it was on up to this moment.
        catchUp();
        setValue = converted;
        return true;
    }

    QVariant getType(int address) override { return read(address); }

    T getSetValue() const { return setValue; }
    // The process value as it stands, without advancing it.
    T getCurrentValue() const { return currentValue; }
    float getTimeConstant() const { return timeConstant; }
    int getSetAddress() const { return setAddress; }
    int getCurrentAddress() const { return currentAddress; }

protected:
    void catchUp()
    {
        const QDateTime before = getLastRequest();
        const qint64 elapsedMs = getTimeDifference();
        if (timeConstant <= 0.0f) {
            currentValue = setValue;
            return;
        }
        if (elapsedMs == 0)
            return;
        const float seconds = static_cast<float>(elapsedMs / 1000.0);
        if (seconds >= 10.0f * timeConstant) {
            currentValue = setValue;
            return;
        }
        const float fraction = 1.0f - std::exp(-seconds / timeConstant);
        T const next = lagarithmetic::fromFloat<T>(lagarithmetic::difference(setValue, currentValue) * fraction
                                                   + static_cast<float>(currentValue));
        if (next == currentValue) {
            // Keep the elapsed time on account until it is enough for one
            // step of T; otherwise a slow integer value read once a second
            // would round every step away and stall short of its target.
            setLastRequest(before);
            return;
        }
        currentValue = next;
    }

    T setValue;
    T currentValue;
    float timeConstant;
    int setAddress;
    int currentAddress;
};

} // namespace zelmor::simulation
