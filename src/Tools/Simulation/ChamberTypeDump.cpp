#include "Tools/Simulation/ChamberTypeDump.h"

#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ChamberTypeId.h"

#include <QFile>
#include <QList>
#include <QMap>
#include <QStandardPaths>
#include <QTextStream>

namespace zelmor::simulation {

using namespace zelmor::domain::types;

namespace {

// The walk stops here: higher type numbers are not dumped.
constexpr int lastDumpedTypeNumber = 1934;

QString documentsFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

// A file that can't be opened, in a missing folder say, is passed over in silence.
void writeFile(const QString& path, const QString& text)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        // The dump holds unit signs and German texts; keep it independent of the locale.
        file.write(text.toUtf8());
        file.close();
    }
}

void writeAddressLine(QTextStream& out, const char* label, QSharedPointer<ControllerAddress>& address)
{
    if (address) {
        out << label << getSignalAddressInfo(address) << Qt::endl;
    }
}

} // namespace

void writeDbToFile(QSharedPointer<ChamberTypeData>& /*unused*/,
                   zelmor::base::connection::databaseconnection::DatabaseConnection& database)
{
    // Type number -> set point ids that are not among the type's signals.
    QMap<int, QList<int>> wrongChambers;

    for (int number = 1; number <= lastDumpedTypeNumber; ++number) {
        const ChamberTypeData chamberType = database.getChamberTypeData(ChamberTypeId(number, 0), true);

        QString text;
        QTextStream out(&text);
        out << "Qualified Name: " << chamberType.getQualifiedTypeName() << Qt::endl;
        out << "Name: " << chamberType.type << Qt::endl;
        out << "Develpment State: " << chamberType.developementState << Qt::endl;
        out << "Additional Info: " << chamberType.info << Qt::endl;
        out << "Controller: " << chamberType.controller << Qt::endl;
        out << "Signals: " << Qt::endl;

        QList<int> signalIds;
        QList<int> setPointIds;
        for (ChamberSignal signal : chamberType.chamberSignals) {
            out << "Signal name : " << signal.name << " id: " << signal.id
                << " Signal Unit:" << getUnitText(signal.unit) << Qt::endl;
            signalIds.append(signal.id);
            if (signal.setPointSignal) {
                setPointIds.append(signal.setPointSignal->id);
                out << " Foreign Signal name : " << signal.setPointSignal->name << Qt::endl;
            }
            writeAddressLine(out, " Read Address: ", signal.read);
            writeAddressLine(out, " Wr M Address: ", signal.writeManual);
            writeAddressLine(out, " Wr B Address: ", signal.writeBasic);
            writeAddressLine(out, " Wr A Address: ", signal.writeAuto);
        }

        for (int setPointId : qAsConst(setPointIds)) {
            if (!signalIds.contains(setPointId)) {
                wrongChambers[number].append(setPointId);
            }
        }

        for (const ChamberProtocol& protocol : chamberType.protocols) {
            out << "Protocol: " << getProtocolString(protocol) << Qt::endl;
        }
        out.flush();
        writeFile(documentsFolder() + QStringLiteral("/config/Config_") + QString::asprintf("%d.txt", number), text);
    }

    QString text;
    QTextStream out(&text);
    for (auto it = wrongChambers.cbegin(); it != wrongChambers.cend(); ++it) {
        out << it.key() << " : ";
        for (int setPointId : it.value()) {
            out << setPointId << " ";
        }
        out << Qt::endl;
    }
    out.flush();
    writeFile(documentsFolder() + QStringLiteral("/WrongChambers.txt"), text);
}

QString getUnitText(Unit::UnitId unit)
{
    const QMap<Unit::UnitId, QString> texts = {
        {Unit::CELSIUS, QStringLiteral("Celsius")},
        {Unit::FAHRENHEIT, QStringLiteral("Fahrenheit")},
        {Unit::KELVIN, QStringLiteral("Kelvin")},
        {Unit::RELATIVE_HUMIDITY_RF, QStringLiteral("%rf")},
        {Unit::RELATIVE_HUMIDITY_RH, QStringLiteral("%rh")},
        {Unit::PERCENT, QStringLiteral("%")},
        {Unit::VOLUME_PERCENT, QStringLiteral("Vol%")},
        {Unit::HECTOPASCAL, QStringLiteral("hPa")},
        {Unit::MILLIBAR, QStringLiteral("mBar")},
        {Unit::KILOLUX, QStringLiteral("kLUX")},
        {Unit::MEGALUX_HOURS, QStringLiteral("mLuxh")},
        {Unit::WATT_PER_SQUARE_METRE, QString::fromUtf8("Wm²")},
        {Unit::WATT_HOURS_PER_SQUARE_METRE, QString::fromUtf8("Whm²")},
        {Unit::BOOLEAN, QStringLiteral("boolean")},
        {Unit::VOLT, QStringLiteral("Volt")},
    };
    return texts.value(unit, QStringLiteral("INVALID"));
}

QString getAccessString(const ControllerAddress::Access& access)
{
    switch (access) {
    case ControllerAddress::READ_ONLY:
        return QStringLiteral("RO");
    case ControllerAddress::WRITE_ONLY:
        return QStringLiteral("WO");
    case ControllerAddress::READ_WRITE:
        return QStringLiteral("RW");
    case ControllerAddress::UNKNOWN:
        return QStringLiteral("UNKNOWN");
    }
    return QStringLiteral("--");
}

QString getTypeString(const QMetaType::Type& type)
{
    switch (type) {
    case QMetaType::Bool:
        return QStringLiteral("Bool");
    case QMetaType::Int:
        return QStringLiteral("Int");
    case QMetaType::Long:
        return QStringLiteral("Long");
    case QMetaType::UShort:
        return QStringLiteral("UShort");
    case QMetaType::Float:
        return QStringLiteral("Float");
    case QMetaType::Void:
        return QStringLiteral("Void");
    default:
        return QStringLiteral("NA");
    }
}

QString getProtocolString(const ChamberProtocol& protocol)
{
    switch (protocol) {
    case MODBUS_RTU:
        return QStringLiteral("MODBUS_RTU");
    case MODBUS_RTU_TUNNEL:
        return QStringLiteral("MODBUS_RTU_TUNNEL");
    case MODBUS_TCP:
        return QStringLiteral("MODBUS_TCP");
    case TLX:
        return QStringLiteral("TLX");
    case VACUUBRAND:
        return QStringLiteral("VACUUBRAND");
    case UNKNOWN_PROTOCOL:
        return QStringLiteral("UNKNOWN_PROTOCOL");
    default:
        return QStringLiteral("NA");
    }
}

QString getSignalAddressInfo(QSharedPointer<ControllerAddress>& address)
{
    return address->address + QStringLiteral(", ") + getAccessString(address->access) + QStringLiteral(", ")
           + getTypeString(address->type) + QStringLiteral(", ") + address->description;
}

} // namespace zelmor::simulation
