#include "Tools/Simulation/ListOfTimeTags.h"

#include "Tools/Simulation/XmlTimeTag.h"

#include <QVector>

namespace zelmor::simulation {

QVariant ListOfTimeTags::read(int address, long long seconds) const
{
    // The tags are taken to stand in ascending order: the first later tag
    // cuts off everything behind it, even tags with earlier times.
    QVector<QVariant> candidates;
    for (const auto& tag : *this) {
        if (tag->get() > seconds)
            break;
        candidates.append(tag->read(address));
    }
    for (auto it = candidates.crbegin(); it != candidates.crend(); ++it) {
        if (it->isValid())
            return *it;
    }
    return QVariant(0.0f);
}

} // namespace zelmor::simulation
