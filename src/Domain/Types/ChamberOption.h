#pragma once

#include <QString>
#include <QStringList>

namespace zelmor::domain::types {

// One equipment option of a chamber type.
class ChamberOption
{
public:
    ChamberOption(const QString& name = QString(), bool fix = false);

    // The option names the system knows, in a fixed order. Filled before main;
    // nothing in the simulator reads it.
    static const QStringList optionNames_;

    QString name;
    bool fix; // always built in
};

bool operator==(const ChamberOption& left, const ChamberOption& right);
bool operator!=(const ChamberOption& left, const ChamberOption& right);

} // namespace zelmor::domain::types
