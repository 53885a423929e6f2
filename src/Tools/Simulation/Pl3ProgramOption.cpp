#include "Tools/Simulation/Pl3ProgramOption.h"

namespace zelmor::simulation {

QVariant Pl3ProgramOption::read(int address)
{
    Q_UNUSED(address)
    return QVariant();
}

bool Pl3ProgramOption::write(int address, QVariant value)
{
    Q_UNUSED(address)
    Q_UNUSED(value)
    return false;
}

} // namespace zelmor::simulation
