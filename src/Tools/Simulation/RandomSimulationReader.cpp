#include "Tools/Simulation/RandomSimulationReader.h"

#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/RampSimulationReader.h"

#include <cstdlib>

namespace zelmor::simulation {

RandomSimulationReader::RandomSimulationReader(QSharedPointer<domain::types::ChamberTypeData> chamberType)
{
    if (chamberType)
        types = RampSimulationReader::getAddressTypes(*chamberType);
}

QVariant RandomSimulationReader::read(int address)
{
    const auto type = types.constFind(address);
    if (type == types.constEnd())
        return QVariant();

    switch (*type) {
    case QMetaType::Bool:
        // The generator advances, but a digital signal never turns on.
        std::rand();
        return QVariant(0);
    case QMetaType::Int:
        return QVariant(std::rand() % 100);
    case QMetaType::UShort:
        return QVariant(static_cast<int>(static_cast<unsigned short>(std::rand()) % 100));
    case QMetaType::Float:
        return QVariant(static_cast<float>(std::rand() % 1000) / 10.0f);
    default:
        return QVariant();
    }
}

bool RandomSimulationReader::write(int address, QVariant value)
{
    Q_UNUSED(address)
    Q_UNUSED(value)
    return true;
}

} // namespace zelmor::simulation
