#include "Domain/Types/ControlSignal.h"

namespace zelmor::domain::types {

namespace {

QMultiMap<ControlSignal::ControlSignalEnum, QString> buildControlSignalMap()
{
    // QMultiMap::insert puts a row in front of the rows of the same key; the order
    // of these lines therefore decides the order of values() per key.
    QMultiMap<ControlSignal::ControlSignalEnum, QString> map;
    map.insert(ControlSignal::PROGRAM_TIME_REMAINING, QStringLiteral("Ctrl_Prog_Time_Remaining"));
    map.insert(ControlSignal::PROGRAM_TIME_REMAINING, QStringLiteral("Ctrl_Prog_Remaining"));
    map.insert(ControlSignal::PROGRAM_TIME_ELAPSED, QStringLiteral("Ctrl_Prog_Time_Elapsed"));
    map.insert(ControlSignal::PROGRAM_TIME_ELAPSED, QStringLiteral("Ctrl_Prog_Elapsed"));
    map.insert(ControlSignal::PROGRAM_NUMBER, QStringLiteral("Ctrl_Prog_ProgNumber"));
    map.insert(ControlSignal::PROGRAM_NUMBER, QStringLiteral("Ctrl_Prog_Act_ProgNumber"));
    map.insert(ControlSignal::PROGRAM_HALT_SIGNAL, QStringLiteral("Ctrl_Prog_HaltSignal"));
    map.insert(ControlSignal::PROGRAM_HALT_SIGNAL_TOLERANCE, QStringLiteral("Ctrl_Prog_HaltSignal_Tolerance"));
    map.insert(ControlSignal::PROGRAM_SECTION_NUMBER, QStringLiteral("Ctrl_Prog_SectNr_ZP1"));
    map.insert(ControlSignal::PROGRAM_SECTION_NUMBER, QStringLiteral("Ctrl_Prog_SectNumber"));
    map.insert(ControlSignal::PROGRAM_SECTION_NUMBER, QStringLiteral("Ctrl_Prog_Act_SectNumber"));
    return map;
}

} // namespace

const QMultiMap<ControlSignal::ControlSignalEnum, QString> ControlSignal::controlSignalMap_ = buildControlSignalMap();

ControlSignal::ControlSignal()
    : ControlSignal(-1, QString(), -1, SUPERUSER, ControllerAddress::placeholder(), ControllerAddress::placeholder())
{
}

ControlSignal::ControlSignal(ControlSignalId id, const QString& name, int bitPosition, UserLevel userLevel,
                             const ControllerAddress& read, const ControllerAddress& write)
    : id(id)
    , name(name)
    , bitPosition(bitPosition)
    , userLevel(userLevel)
    , read(read)
    , write(write)
{
}

ControlSignal ControlSignal::placeholder()
{
    return ControlSignal();
}

bool operator==(const ControlSignal& left, const ControlSignal& right)
{
    return left.id == right.id && left.name == right.name && left.bitPosition == right.bitPosition
           && left.read == right.read && left.write == right.write;
}

bool operator!=(const ControlSignal& left, const ControlSignal& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
