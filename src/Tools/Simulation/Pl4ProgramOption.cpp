#include "Tools/Simulation/Pl4ProgramOption.h"

#include <QMetaType>

namespace zelmor::simulation {

namespace {

const int modeAddress_ = 44032;
const int modeMask_ = 3;

const int sectionTableAddress_ = 44043;
const int sectionCount_ = 30;
const int sectionSize_ = 12;

struct CellOffset
{
    int offset;
    QMetaType::Type type;
};

// 32-bit values take two addresses; the upper one has no cell.
const CellOffset headerCells_[] = {
    {0, QMetaType::UShort}, {1, QMetaType::UShort}, {2, QMetaType::Short},  {3, QMetaType::UShort},
    {4, QMetaType::UShort}, {5, QMetaType::UShort}, {6, QMetaType::UShort}, {7, QMetaType::UShort},
    {8, QMetaType::UShort}, {9, QMetaType::Int},
};

const CellOffset sectionCells_[] = {
    {0, QMetaType::Float}, {2, QMetaType::Float},   {4, QMetaType::Float},   {6, QMetaType::Float},
    {8, QMetaType::UInt},  {10, QMetaType::UShort}, {11, QMetaType::UShort},
};

} // namespace

Pl4ProgramOption::Pl4ProgramOption()
{
    for (const auto& cell : headerCells_)
        cells.insert(modeAddress_ + cell.offset, QVariant(cell.type, nullptr));
    for (int section = 0; section < sectionCount_; ++section) {
        const int first = sectionTableAddress_ + section * sectionSize_;
        for (const auto& cell : sectionCells_)
            cells.insert(first + cell.offset, QVariant(cell.type, nullptr));
    }
}

QVariant Pl4ProgramOption::read(int address)
{
    return cells.value(address);
}

bool Pl4ProgramOption::write(int address, QVariant value)
{
    const auto cell = cells.find(address);
    if (cell == cells.end())
        return false;
    if (address == modeAddress_)
        value = QVariant(value.toInt() & modeMask_);
    *cell = value;
    return true;
}

} // namespace zelmor::simulation
