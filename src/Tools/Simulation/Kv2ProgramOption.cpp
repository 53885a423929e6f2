#include "Tools/Simulation/Kv2ProgramOption.h"

#include <QList>
#include <QStringList>
#include <QTimerEvent>

namespace zelmor::simulation {

namespace {

enum Register {
    RunningProgramRegister = 4260,
    ProgramStateRegister = 4261,
    ProgramRunTimeRegister = 4262,
    RemainingTimeRegister = 4264,
    ProgramToStartRegister = 4423,
    StartRegister = 4425,
    StopRegister = 4426,
    ProgramCountRegister = 12288,
    ZeroRegister = 12290,
    ActiveFlagsRegister = 12291,
    SelectedProgramRegister = 12292,
    ActiveRegister = 12344,
    ProgramNameRegister = 17152,
};

const quint32 programCountAnswer_ = 128;
const quint16 activeFlags_ = 16;
const quint16 stateRunning_ = 10;
const quint32 unknownRunTime_ = 2222;
const quint32 countdownSeconds_ = 100;
const int countdownIntervalMs_ = 1000;

const QStringList& getProgramNames()
{
    static const QStringList programNames = {
        QStringLiteral("Andromeda Galaxy"),   QStringLiteral("Antennae Galaxies"),
        QStringLiteral("Black Eye Galaxy"),   QStringLiteral("Bode's Galaxy"),
        QStringLiteral("Butterfly Galaxies"), QStringLiteral("Cartwheel Galaxy"),
        QStringLiteral("Cigar Galaxy"),       QStringLiteral("Circinus Galaxy"),
        QStringLiteral("Comet Galaxy"),       QStringLiteral("Cosmos Redshift 7"),
        QStringLiteral("Hoag's Object"),      QStringLiteral("Large Magellanic Cloud"),
        QStringLiteral("Mice Galaxies"),      QStringLiteral("Small Magellanic Cloud"),
        QStringLiteral("Mayall's Object"),    QStringLiteral("Milky Way"),
        QStringLiteral("Pinwheel Galaxy"),    QStringLiteral("Sombrero Galaxy"),
        QStringLiteral("Sunflower Galaxy"),   QStringLiteral("Tadpole Galaxy"),
        QStringLiteral("Whirlpool Galaxy"),
    };
    return programNames;
}

const QList<int>& getLaufzeiten()
{
    static const QList<int> laufzeiten = {
        1000, 3000, 555,  4444, 788,  32243, 673455, 62345, 234,  4,    23,  5253, 62346, 6,   23452, 342,
        2334, 2166, 4245, 2345, 2558, 364,   369,    1255,  4775, 2514, 784, 6541, 124,   314, 20,
    };
    return laufzeiten;
}

QVariant ushortValue(quint16 value)
{
    return QVariant::fromValue(value);
}

QVariant uintValue(quint32 value)
{
    return QVariant::fromValue(value);
}

} // namespace

Kv2ProgramOption::Kv2ProgramOption()
{
    const auto addCell = [this](int address, QMetaType::Type type) {
        cells.insert(address, qMakePair(type, QVariant(type, nullptr)));
    };
    for (int address = 4416; address <= ProgramToStartRegister; ++address)
        addCell(address, QMetaType::UShort);
    addCell(4424, QMetaType::Short);
    addCell(4440, QMetaType::UShort);
}

QVariant Kv2ProgramOption::read(int address)
{
    switch (address) {
    case RunningProgramRegister:
        return ushortValue(runningProgram);
    case ProgramStateRegister:
        return ushortValue(programState);
    case ProgramRunTimeRegister:
        return uintValue(programRunTime);
    case RemainingTimeRegister:
        return uintValue(remainingTime);
    case StartRegister:
        return ushortValue(programActive ? 1 : 0);
    case StopRegister:
        return ushortValue(programActive ? 0 : 1);
    case ProgramCountRegister:
        return uintValue(programCountAnswer_);
    case ZeroRegister:
        return ushortValue(0);
    case ActiveFlagsRegister:
        return ushortValue(programActive ? activeFlags_ : 0);
    case SelectedProgramRegister:
        return ushortValue(selectedProgram);
    case ActiveRegister:
        return ushortValue(programActive ? 1 : 0);
    case ProgramNameRegister:
        return getProgramName();
    default:
        break;
    }
    const auto cell = cells.constFind(address);
    if (cell == cells.constEnd())
        return QVariant();
    return cell->second;
}

bool Kv2ProgramOption::write(int address, QVariant value)
{
    switch (address) {
    case StartRegister:
        if (value.toInt() != 0)
            startProgram();
        return true;
    case StopRegister:
        if (value.toInt() != 0)
            stopProgram();
        return true;
    case ProgramCountRegister:
        programCount = value.toInt();
        return true;
    case SelectedProgramRegister:
        selectedProgram = static_cast<quint16>(value.toInt());
        return true;
    default:
        break;
    }
    // The other computed registers are read-only and have no cell behind them.
    const auto cell = cells.find(address);
    if (cell == cells.end())
        return false;
    cell->second = value;
    return true;
}

void Kv2ProgramOption::timerEvent(QTimerEvent* event)
{
    if (remainingTime != 0) {
        --remainingTime;
        if (remainingTime != 0)
            return;
    }
    // The event's own timer, not timerId: a timer left over from a second
    // start removes itself here.
    killTimer(event->timerId());
    timerId = -1;
    runningProgram = 0;
    programState = 0;
    programRunTime = 0;
}

void Kv2ProgramOption::startProgram()
{
    const int program = cells.value(ProgramToStartRegister).second.toInt();
    programState = stateRunning_;
    // Only the low 16 bits count, so a cell of all ones wraps to program 0.
    runningProgram = static_cast<quint16>(static_cast<quint32>(program) + 1u);
    const QList<int>& laufzeiten = getLaufzeiten();
    if (runningProgram < laufzeiten.size())
        programRunTime = static_cast<quint32>(laufzeiten.at(runningProgram));
    else
        programRunTime = unknownRunTime_;
    // Every program runs the same countdown whatever its table entry says.
    remainingTime = countdownSeconds_;
    timerId = startTimer(countdownIntervalMs_, Qt::CoarseTimer);
}

void Kv2ProgramOption::stopProgram()
{
    programRunTime = 0;
    remainingTime = 0;
    programState = 0;
    runningProgram = 0;
    if (timerId >= 0) {
        killTimer(timerId);
        timerId = -1;
    }
}

QString Kv2ProgramOption::getProgramName() const
{
    const QStringList& programNames = getProgramNames();
    if (selectedProgram < programNames.size())
        return programNames.at(selectedProgram);
    return QStringLiteral("Not defined %1").arg(selectedProgram);
}

} // namespace zelmor::simulation
