#include "Tools/SimulationControl/ControlPage.h"

#include <QFile>

// Resources of a static library are registered by hand, outside any namespace.
static void registerControlPageResource()
{
    Q_INIT_RESOURCE(ControlPage);
}

namespace zelmor::simulation::control {

QByteArray ControlPage::html()
{
    static const QByteArray page = [] {
        registerControlPageResource();
        QFile file(QStringLiteral(":/zelmor/control/control.html"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }();
    return page;
}

} // namespace zelmor::simulation::control
