#pragma once

#include <QList>
#include <QMap>
#include <QSharedPointer>
#include <QString>

namespace zelmor::domain::types {
class ChamberTypeData;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {
class DatabaseConnection;
} // namespace zelmor::base::connection::databaseconnection

namespace zelmor::simulation {

class ChamberSimulation;

// Shared by all chambers of a run; they only grow or move forward.

// IP address text -> hardware address of its interface, filled by getAllIpAddresses().
extern QMap<QString, QString> listOfMacAdresses_;
// The simulated serial-to-Ethernet converter now being filled with tunnelled chambers.
extern QString currentModbusConverterIpAddress;
// The next slave address on that converter, 1 to 100.
extern int currentModbusConverterModbusAdr;

// The chamber that serves `type` on `ipAddress`, with its reader built from
// the type's signals and control signals; null when no server class fits
// the controller, its protocols and the shape of the address. The chamber
// gets its own copy of the type. Prints "Adding Signal " for each signal
// that gets a value of its own.
QSharedPointer<ChamberSimulation> getSimulationByChamberConfigId(const domain::types::ChamberTypeData& type,
                                                                 QString ipAddress);
// The same for the catalogue's type `id` (both elements of the type id are `id`).
QSharedPointer<ChamberSimulation>
getSimulationByChamberConfigId(base::connection::databaseconnection::DatabaseConnection& database, int id,
                               QString ipAddress);

// The IPv4 addresses of the machine's up, broadcasting, non-loopback
// interfaces that lie in the subnet of `ipAddress`; all of them for
// "127.0.0.1". Records each address's hardware address in listOfMacAdresses_.
QList<QString> getAllIpAddresses(QString ipAddress);

// Up to `count` chambers of type `id` on the local addresses that
// getAllIpAddresses(ipAddress) gives, and for each a row of the extract file
// "sqlextract.sql" in the documents folder, which is rewritten. Nothing, and
// no file, when there is no such address.
QList<QSharedPointer<ChamberSimulation>>
createSimulations(base::connection::databaseconnection::DatabaseConnection& database, QString ipAddress, QString count,
                  int id);

// One chamber for each qualified type name of the catalogue, one address
// each while addresses last, with the extract file as above.
QList<QSharedPointer<ChamberSimulation>>
createAutoSimulation(base::connection::databaseconnection::DatabaseConnection& database, QString ipAddress);

} // namespace zelmor::simulation
