#pragma once

#include "Tools/Simulation/SimulationReader.h"
#include "Tools/Simulation/SimulationValue.h"

#include <QVariant>

#include <cmath>

namespace zelmor::simulation {

// A floating-point simulated value: the process value follows the set value
// with a first-order lag, advanced only when the process value is read or the
// set value written.
//
// Unlike the integer family, a time constant of 0 or less doesn't follow at
// once: the value lands on the set value after the first full second. And
// getType keeps the default, invalid at every address; servers rely on that.
template<typename T>
class SimulationValueFloatBase : public SimulationValue, public SimulationReader
{
public:
    SimulationValueFloatBase(T current, T set, float timeConstant, int setAddress, int currentAddress)
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
            return QVariant(setValue);
        if (address == currentAddress) {
            catchUp();
            return QVariant(currentValue);
        }
        return QVariant();
    }

    // Any value is taken; what doesn't convert is 0.
    bool write(int address, QVariant value) override
    {
        if (address != setAddress || address == noAddress_)
            return false;
        T const converted = value.toFloat();
        // The process value keeps the path it was on up to this moment.
        catchUp();
        setValue = converted;
        return true;
    }

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
        if (elapsedMs == 0)
            return;
        const float seconds = static_cast<float>(elapsedMs / 1000.0);
        // Ten time constants count as arrived.
        if (seconds >= 10.0f * timeConstant) {
            currentValue = setValue;
            return;
        }
        const float fraction = 1.0f - std::exp(-seconds / timeConstant);
        T const next = (setValue - currentValue) * fraction + currentValue;
        if (next == currentValue) {
            // A value at rest keeps its time on account (see the integer family).
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
