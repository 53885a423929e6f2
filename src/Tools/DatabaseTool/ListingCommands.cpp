#include "Tools/DatabaseTool/ListingCommands.h"

#include "Domain/Types/ChamberData.h"
#include "Domain/Types/ProgramData.h"
#include "Domain/Types/RecordingData.h"
#include "Domain/Types/UserData.h"
#include "Tools/DatabaseTool/OutputTable.h"
#include "Tools/DatabaseTool/ToolContext.h"
#include "Tools/DatabaseTool/ToolDatabase.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QTextStream>

namespace zelmor::tools::databasetool {

using zelmor::domain::types::ChamberData;
namespace types = zelmor::domain::types;

namespace {

// NULL for the "none" of a number.
QJsonValue numberOrNull(qint64 value, qint64 none)
{
    return value == none ? QJsonValue() : QJsonValue(double(value));
}

QJsonValue textOrNull(const QString& text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonValue activation(types::ActivationState::State state)
{
    return state == types::ActivationState::UNKNOWN_STATE ? QJsonValue()
                                                          : QJsonValue(state == types::ActivationState::ACTIVE);
}

} // namespace

QString ListingCommands::protocolName(int protocol)
{
    switch (protocol) {
    case types::MODBUS_RTU:
        return QStringLiteral("Modbus RTU");
    case types::MODBUS_RTU_TUNNEL:
        return QStringLiteral("Modbus RTU over TCP");
    case types::MODBUS_TCP:
        return QStringLiteral("Modbus TCP");
    case types::TLX:
        return QStringLiteral("TLX");
    case types::VACUUBRAND:
        return QStringLiteral("Vacuubrand");
    case types::UNKNOWN_PROTOCOL:
        return QString();
    default:
        return QString::number(protocol);
    }
}

QJsonValue ListingCommands::timeValue(const QDateTime& time)
{
    if (!time.isValid())
        return QJsonValue();
    return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODate);
}

QString ListingCommands::converterName(int converter)
{
    switch (converter) {
    case types::NO_CONVERTER:
        return QString();
    case types::XPORT_CONVERTER:
        return QStringLiteral("XPort");
    case types::WUT_CONVERTER:
        return QStringLiteral("W&T");
    default:
        return QString::number(converter);
    }
}

CommandOutcome ListingCommands::print(const ToolContext& context, ToolDatabase& database, const OutputTable& table,
                                      const QString& what)
{
    if (database.hasErrors())
        return CommandOutcome::failure(COMMAND_FAILED,
                                       context.file() + QStringLiteral(": the %1 can't be read").arg(what));
    context.out << (context.line.isSet(QStringLiteral("--json")) ? table.toJson() : table.toText());
    return CommandOutcome::success();
}

CommandOutcome ListingCommands::chambers(const ToolContext& context)
{
    ToolDatabase database(context.key(), context.line.value(QStringLiteral("--catalogue")));
    const CommandOutcome outcome =
        database.open(context.file(), context.file(), DatabaseFile::READ_ONLY, ToolDatabase::WITHOUT_CATALOGUE);
    if (!outcome.isSuccess())
        return outcome;
    const bool json = context.line.isSet(QStringLiteral("--json"));
    // A person gets what tells the chambers apart; a script gets every column.
    QList<OutputTable::Column> columns = {{"id", "ID"},
                                          {"name", "NAME"},
                                          {"typeId", "TYPE"},
                                          {"additionalInfoId", "VARIANT"},
                                          {"serialNumber", "SERIAL"},
                                          {"ipAddress", "ADDRESS"},
                                          {"macAddress", "MAC"},
                                          {"modbusAddress", "MODBUS"},
                                          {"protocol", "PROTOCOL"},
                                          {"converter", "CONVERTER"},
                                          {"isActive", "ACTIVE"},
                                          {"isSubscribed", "SUBSCRIBED"},
                                          {"isArchived", "ARCHIVED"}};
    if (json)
        columns += {{"comPort", ""}, {"baudRate", ""}, {"dataBits", ""}, {"stopBits", ""}, {"parity", ""}};
    OutputTable table(columns);
    for (const ChamberData& chamber : database.facade().getAllChamberData(false)) {
        QList<QJsonValue> cells = {
            int(chamber.chamberId),
            chamber.chamberName,
            double(chamber.chamberTypeId.typeId),
            double(chamber.chamberTypeId.additionalInfoId),
            textOrNull(chamber.serialNumber),
            chamber.ipAddress.isNull() ? QJsonValue() : QJsonValue(chamber.ipAddress.toString()),
            chamber.macAddress.isValid() ? QJsonValue(chamber.macAddress.toString()) : QJsonValue(),
            int(chamber.modbusAddress),
            json ? QJsonValue(int(chamber.protocol)) : QJsonValue(protocolName(chamber.protocol)),
            json ? QJsonValue(int(chamber.converter)) : QJsonValue(converterName(chamber.converter)),
            activation(chamber.activationState),
            chamber.isSubscribed,
            chamber.isArchived,
        };
        if (json)
            cells +=
                {textOrNull(chamber.comPort), numberOrNull(chamber.baudRate, -1), numberOrNull(chamber.dataBits, -1),
                 numberOrNull(chamber.stopBits, -1), numberOrNull(chamber.parity, -1)};
        table.addRow(cells);
    }
    return print(context, database, table, QStringLiteral("chambers"));
}

CommandOutcome ListingCommands::programs(const ToolContext& context)
{
    // A program names its chamber type from the catalogue.
    ToolDatabase database(context.key(), context.line.value(QStringLiteral("--catalogue")));
    const CommandOutcome outcome =
        database.open(context.file(), context.file(), DatabaseFile::READ_ONLY, ToolDatabase::CATALOGUE_NEEDED);
    if (!outcome.isSuccess())
        return outcome;
    static const QStringList typeNames = {QStringLiteral("time"), QStringLiteral("week"), QStringLiteral("norm")};
    OutputTable table({{"id", "ID"},
                       {"name", "NAME"},
                       {"type", "TYPE"},
                       {"chamberTypeId", "CHAMBER TYPE"},
                       {"chamberTypeName", "TYPE NAME"},
                       {"userId", "USER"},
                       {"steps", "STEPS"},
                       {"repetitions", "REPETITIONS"},
                       {"edited", "EDITED"},
                       {"infoText", "INFO"}});
    for (const types::ProgramData& program : database.facade().getAllPrograms()) {
        table.addRow({int(program.id), program.name, typeNames.value(program.type, QString::number(program.type)),
                      double(program.chamberType.chamberTypeId.typeId),
                      textOrNull(program.chamberType.getQualifiedTypeName()), numberOrNull(int(program.userId), 0),
                      program.steps.size(), program.repetitions.size(), program.edited, textOrNull(program.infoText)});
    }
    return print(context, database, table, QStringLiteral("programs"));
}

CommandOutcome ListingCommands::recordings(const ToolContext& context)
{
    // A recording's signals, with their names and units, come from the catalogue.
    ToolDatabase database(context.key(), context.line.value(QStringLiteral("--catalogue")));
    const CommandOutcome outcome =
        database.open(context.file(), context.file(), DatabaseFile::READ_ONLY, ToolDatabase::CATALOGUE_NEEDED);
    if (!outcome.isSuccess())
        return outcome;
    const bool json = context.line.isSet(QStringLiteral("--json"));
    OutputTable table({{"id", "ID"},
                       {"name", "NAME"},
                       {"chamberId", "CHAMBER"},
                       {"userId", "USER"},
                       {"startTime", "START"},
                       {"endTime", "END"},
                       {"secondsInterval", "INTERVAL"},
                       {"rows", "ROWS"},
                       {"signals", "SIGNALS"},
                       {"isActive", "ACTIVE"},
                       {"isArchived", "ARCHIVED"}});
    for (const QSharedPointer<types::RecordingData>& recording : database.facade().getAllRecordingData()) {
        QJsonArray recordingSignals;
        for (const types::ChamberSignal& signal : recording->chamberSignals)
            recordingSignals.append(QJsonObject{{"id", int(signal.id)},
                                                {"name", signal.name},
                                                {"unit", textOrNull(types::Unit::toString(signal.unit))}});
        // The rows as the recordset store counts them, not the recording's own count.
        const qint64 rows = database.facade().getRecordsetLenght(recording->id);
        table.addRow({int(recording->id), recording->name, numberOrNull(int(recording->chamberId), -1),
                      numberOrNull(int(recording->userId), 0), timeValue(recording->startTime),
                      timeValue(recording->endTime), numberOrNull(recording->secondsInterval, -1), double(rows),
                      json ? QJsonValue(recordingSignals) : QJsonValue(recordingSignals.size()), recording->isActive,
                      recording->isArchived});
    }
    return print(context, database, table, QStringLiteral("recordings"));
}

CommandOutcome ListingCommands::users(const ToolContext& context)
{
    ToolDatabase database(context.key(), context.line.value(QStringLiteral("--catalogue")));
    const CommandOutcome outcome =
        database.open(context.file(), context.file(), DatabaseFile::READ_ONLY, ToolDatabase::WITHOUT_CATALOGUE);
    if (!outcome.isSuccess())
        return outcome;
    OutputTable table({{"id", "ID"},
                       {"loginName", "LOGIN"},
                       {"firstName", "FIRST NAME"},
                       {"lastName", "LAST NAME"},
                       {"mailAddress", "MAIL"},
                       {"userLevel", "LEVEL"},
                       {"userLevelName", "LEVEL NAME"},
                       {"isBanned", "BANNED"},
                       {"failedLogins", "FAILED LOGINS"},
                       {"passwordIsTemporary", "TEMPORARY PASSWORD"},
                       {"passwordExpirationTime", "PASSWORD EXPIRES"}});
    // Hashes and salts stay where they are.
    for (const QSharedPointer<types::UserData>& user : database.facade().getAllUserData()) {
        table.addRow({int(user->id), user->loginName, textOrNull(user->firstName), textOrNull(user->lastName),
                      textOrNull(user->mailAddress), int(user->userLevel), textOrNull(user->getUserLevelName()),
                      user->isBanned, numberOrNull(user->failedLogins, -1), user->passwordIsTemporary,
                      timeValue(user->passwordExpirationTime)});
    }
    return print(context, database, table, QStringLiteral("users"));
}

} // namespace zelmor::tools::databasetool
