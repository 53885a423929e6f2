#include "SqlCipherDriver/SqlCipherDriver.h"

#include <QSqlDriverPlugin>

namespace zelmor::sqldriver {

// Lets any Qt program load the driver from <plugins>/sqldrivers.
class SqlCipherDriverPlugin : public QSqlDriverPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QSqlDriverFactoryInterface_iid FILE "SqlCipherDriverPlugin.json")

public:
    QSqlDriver* create(const QString& name) override
    {
        if (name == QLatin1String(SqlCipherDriver::driverName_))
            return new SqlCipherDriver;
        return nullptr;
    }
};

} // namespace zelmor::sqldriver

#include "SqlCipherDriverPlugin.moc"
