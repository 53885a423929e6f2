#include "Tools/Simulation/Kv1ProgramOption.h"

#include <QMetaType>

namespace zelmor::simulation {

namespace {

const int firstRunTimeAddress_ = 4231;
const int secondRunTimeAddress_ = 4233;
const int constantAddress_ = 6656;
const quint16 constantValue_ = 2;
const int commandAddress_ = 6690;

const quint16 startCommand_ = 0x0400;
const quint16 resetMask_ = 0xF7FF;
const quint16 resetCommand_ = 0x1000;
const uint firstRunTimeOnStart_ = 600;
const uint secondRunTimeOnStart_ = 300;

struct CellBlock
{
    int first;
    int count;
    int step;
    QMetaType::Type type;
};

// A 32-bit cell takes two controller addresses, hence the steps of 2.
const CellBlock cellBlocks_[] = {
    {4204, 1, 1, QMetaType::UShort}, {4205, 3, 1, QMetaType::UChar},  {4231, 5, 2, QMetaType::UInt},
    {5465, 1, 1, QMetaType::UChar},  {6656, 2, 1, QMetaType::UShort}, {6658, 1, 1, QMetaType::Short},
    {6659, 2, 1, QMetaType::SChar},  {6661, 1, 1, QMetaType::UChar},  {6662, 1, 1, QMetaType::SChar},
    {6663, 4, 2, QMetaType::Float},  {6671, 1, 1, QMetaType::UInt},   {6673, 4, 1, QMetaType::UChar},
    {6690, 3, 1, QMetaType::UShort}, {6693, 2, 2, QMetaType::UInt},   {6697, 1, 1, QMetaType::UShort},
};

} // namespace

Kv1ProgramOption::Kv1ProgramOption()
{
    for (const auto& block : cellBlocks_) {
        for (int i = 0; i < block.count; ++i)
            cells.insert(block.first + i * block.step, QVariant(block.type, nullptr));
    }
}

QVariant Kv1ProgramOption::read(int address)
{
    if (address == constantAddress_)
        return QVariant::fromValue(constantValue_);
    return cells.value(address);
}

bool Kv1ProgramOption::write(int address, QVariant value)
{
    if (!cells.contains(address))
        return false;

    if (address == commandAddress_) {
        lastCommand = static_cast<quint16>(value.toInt());
        if (lastCommand == startCommand_) {
            cells[firstRunTimeAddress_] = QVariant::fromValue(firstRunTimeOnStart_);
            cells[secondRunTimeAddress_] = QVariant::fromValue(secondRunTimeOnStart_);
        } else if ((lastCommand & resetMask_) == 0 || lastCommand == resetCommand_) {
            cells[firstRunTimeAddress_] = QVariant::fromValue(0u);
            cells[secondRunTimeAddress_] = QVariant::fromValue(0u);
        }
    }
    cells[address] = value;
    return true;
}

} // namespace zelmor::simulation
