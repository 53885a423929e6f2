#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QMap>
#include <QMetaType>
#include <QObject>
#include <QPair>
#include <QVariant>

class QTimerEvent;

namespace zelmor::simulation {

// Program and option memory of a KV2 controller. A start command makes the
// running-program registers jump, and a 1000 ms timer counts the remaining
// time down to 0, where the program ends by itself. Everything else is a
// fixed register or a cell that reads back what was written.
class Kv2ProgramOption : public QObject, public SimulationReader
{
    Q_OBJECT

public:
    Kv2ProgramOption();

    QVariant read(int address) override;
    bool write(int address, QVariant value) override;

protected:
    // One second of the running program.
    void timerEvent(QTimerEvent* event) override;

private:
    void startProgram();
    void stopProgram();
    QString getProgramName() const;

    quint16 selectedProgram = 0;
    quint16 runningProgram = 0;
    qint32 programCount = 0;
    quint16 programState = 1;
    quint32 programRunTime = 0;
    quint32 remainingTime = 0;
    // The declared type is kept beside each cell and never consulted: a write
    // replaces the QVariant with whatever type it brings.
    QMap<int, QPair<QMetaType::Type, QVariant>> cells;
    // Nothing sets it; the start, stop and state reads depend on it all the same.
    bool programActive = false;
    int timerId = -1;
};

} // namespace zelmor::simulation
