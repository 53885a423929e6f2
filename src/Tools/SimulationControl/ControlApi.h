#pragma once

#include <QJsonObject>
#include <QList>
#include <QSharedPointer>
#include <QStringList>
#include <QVector>

namespace zelmor::simulation {
class ChamberSimulation;
} // namespace zelmor::simulation

namespace zelmor::simulation::control {

class ChamberFaults;
struct ControlRequest;
struct ControlResponse;

// The resources of the control interface over a fleet: one JSON resource per
// chamber, addressed by its position in the fleet, its online state, its
// faults and its reader's values; the metrics; the page.
//
// Gives every chamber that takes faults a ChamberFaults of its own, cleared.
// Only call from the thread of the event loop.
class ControlApi
{
public:
    static constexpr int defaultPageSize_ = 1000000;

    // Each chamber's fault draws start from `seed` plus its id.
    ControlApi(QList<QSharedPointer<ChamberSimulation>> chambers, quint32 seed);
    ~ControlApi();

    ControlResponse handle(const ControlRequest& request);

    // The JSON resource of chamber `id`, which must exist.
    QJsonObject describe(int id) const;

private:
    ControlResponse listChambers(const ControlRequest& request) const;
    ControlResponse handleChamber(int id, const QStringList& rest, const ControlRequest& request);
    ControlResponse handleOnline(int id, const ControlRequest& request);
    ControlResponse handleFaults(int id, const ControlRequest& request);
    ControlResponse handleValue(int id, const QString& addressText, const ControlRequest& request);
    bool matches(int id, const ControlRequest& request) const;

    const QList<QSharedPointer<ChamberSimulation>> chambers;
    QVector<QSharedPointer<ChamberFaults>> faults;
};

} // namespace zelmor::simulation::control
