#pragma once

#include "Domain/Types/ChamberProtocol.h"
#include "Domain/Types/ControllerAddress.h"
#include "Domain/Types/Unit.h"

#include <QMetaType>
#include <QSharedPointer>
#include <QString>

namespace zelmor::domain::types {
class ChamberTypeData;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {
class DatabaseConnection;
} // namespace zelmor::base::connection::databaseconnection

// A diagnostic for a catalogue in doubt, called by hand from code; no option of
// the tool reaches it.
namespace zelmor::simulation {

// Writes "<documents>/config/Config_<n>.txt" for every type number n from 1 to
// 1934, with the type's signals and their registers, and
// "<documents>/WrongChambers.txt" with the types whose set points are not among
// their own signals. The config folder must exist: it is not created, and files
// that can't be opened are passed over in silence. The first argument is not used.
void writeDbToFile(QSharedPointer<zelmor::domain::types::ChamberTypeData>& unused,
                   zelmor::base::connection::databaseconnection::DatabaseConnection& database);

// Texts for people reading a dump; they differ from the units' own texts on purpose.
QString getUnitText(zelmor::domain::types::Unit::UnitId unit);
QString getAccessString(const zelmor::domain::types::ControllerAddress::Access& access);
QString getTypeString(const QMetaType::Type& type);
QString getProtocolString(const zelmor::domain::types::ChamberProtocol& protocol);
// "address, access, type, description".
QString getSignalAddressInfo(QSharedPointer<zelmor::domain::types::ControllerAddress>& address);

} // namespace zelmor::simulation
