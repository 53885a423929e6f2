#include "Tools/DatabaseTool/ExtractReader.h"

#include <QRegularExpression>
#include <QVariant>

#include <climits>

namespace zelmor::tools::databasetool {

using zelmor::domain::types::ChamberData;
using zelmor::domain::types::ChamberProtocol;
using zelmor::domain::types::ChamberTypeId;
using zelmor::domain::types::Converter;
using zelmor::domain::types::MacAddress;
namespace ActivationState = zelmor::domain::types::ActivationState;

namespace {

// Positions in a row of the simulator's kind; a dumped row has "is_active" at 6.
enum Value {
    ID,
    TYPE_ID,
    ADDITIONAL_INFO_ID,
    SERIAL_NUMBER,
    IS_ARCHIVED,
    IS_SUBSCRIBED,
    NAME,
    IPV4_ADDRESS,
    IPV6_ADDRESS,
    MAC_ADDRESS,
    MODBUS_ADDRESS,
    COM_PORT,
    PARITY,
    BAUD_RATE,
    DATA_BITS,
    STOP_BITS,
    PROTOCOL,
    CONVERTER,
    EXTRACT_VALUES
};
constexpr int isActiveInDump = 6;
constexpr int dumpValues = EXTRACT_VALUES + 1;
constexpr int highestModbusAddress = 255;

const char* const valueNames[EXTRACT_VALUES] = {"id",           "chamber_type_id", "chamber_type_additional_info_id",
                                                "serial_no",    "is_archived",     "is_subscribed",
                                                "chamber_name", "ip_v4_address",   "ip_v6_address",
                                                "mac_address",  "modbus_address",  "com_port",
                                                "parity",       "baud_rate",       "data_bits",
                                                "stop_bits",    "protocol_id",     "converter_id"};

// SQL literals: NULL as an invalid QVariant, numbers as qint64, texts as QString.
bool readLiterals(const QString& text, QList<QVariant>* values, QString* error)
{
    int pos = 0;
    const auto skipBlanks = [&] {
        while (pos < text.size() && text.at(pos).isSpace())
            ++pos;
    };
    for (;;) {
        skipBlanks();
        if (pos >= text.size()) {
            *error = QStringLiteral("the row ends after value %1").arg(values->size());
            return false;
        }
        const QChar first = text.at(pos);
        if (first == QLatin1Char('\'')) {
            QString value;
            for (++pos;; ++pos) {
                if (pos >= text.size()) {
                    *error = QStringLiteral("the text of value %1 has no closing quote").arg(values->size() + 1);
                    return false;
                }
                if (text.at(pos) == QLatin1Char('\'')) {
                    if (pos + 1 < text.size() && text.at(pos + 1) == QLatin1Char('\'')) {
                        value += QLatin1Char('\'');
                        ++pos;
                        continue;
                    }
                    ++pos;
                    break;
                }
                value += text.at(pos);
            }
            values->append(value);
        } else if (text.midRef(pos, 4).compare(QLatin1String("NULL"), Qt::CaseInsensitive) == 0) {
            values->append(QVariant());
            pos += 4;
        } else {
            static const QRegularExpression number(QStringLiteral("[-+]?\\d+"));
            const QRegularExpressionMatch match =
                number.match(text, pos, QRegularExpression::NormalMatch, QRegularExpression::AnchoredMatchOption);
            bool ok = false;
            const qint64 value = match.hasMatch() ? match.captured().toLongLong(&ok) : 0;
            if (!ok) {
                *error = QStringLiteral("value %1 is no number, text or NULL: '%2'")
                             .arg(values->size() + 1)
                             .arg(text.mid(pos, 20));
                return false;
            }
            values->append(value);
            pos += match.capturedLength();
        }
        skipBlanks();
        if (pos < text.size() && text.at(pos) == QLatin1Char(',')) {
            ++pos;
            continue;
        }
        if (pos < text.size() && text.at(pos) == QLatin1Char(')')) {
            ++pos;
            skipBlanks();
            if (text.midRef(pos).trimmed() == QLatin1String(";"))
                return true;
            *error = QStringLiteral("the row doesn't end in \");\" after value %1").arg(values->size());
            return false;
        }
        *error = QStringLiteral("value %1 is followed by '%2' instead of a comma")
                     .arg(values->size())
                     .arg(text.mid(pos, 20));
        return false;
    }
}

class Fields
{
public:
    explicit Fields(const QList<QVariant>& values)
        : values_(values)
    {
    }

    bool isNull(Value value) const { return !values_.at(value).isValid(); }
    QString text(Value value) const { return isNull(value) ? QString() : values_.at(value).toString(); }

    // A whole number in [low, high]; NULL gives the fallback.
    qint64 number(Value value, qint64 low, qint64 high, qint64 fallback)
    {
        const QVariant& field = values_.at(value);
        if (!field.isValid())
            return fallback;
        if (field.type() != QVariant::LongLong || field.toLongLong() < low || field.toLongLong() > high) {
            fail(QStringLiteral("%1 must be a whole number from %2 to %3, not '%4'")
                     .arg(QLatin1String(valueNames[value]))
                     .arg(low)
                     .arg(high)
                     .arg(field.toString()));
            return fallback;
        }
        return field.toLongLong();
    }
    bool flag(Value value) { return number(value, 0, 1, 0) == 1; }

    void fail(const QString& error)
    {
        if (error_.isEmpty())
            error_ = error;
    }
    QString error() const { return error_; }

private:
    QList<QVariant> values_;
    QString error_;
};

} // namespace

ChamberData ExtractReader::parseLine(const QString& line, QString* error)
{
    static const QRegularExpression insert(
        QStringLiteral("^\\s*INSERT\\s+INTO\\s+(\"chamber\"|chamber)\\s+VALUES\\s*\\("),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = insert.match(line);
    if (!match.hasMatch()) {
        *error = QStringLiteral("not a row of table \"chamber\" (INSERT INTO \"chamber\" VALUES(...);)");
        return {};
    }
    QList<QVariant> values;
    if (!readLiterals(line.mid(match.capturedLength()), &values, error))
        return {};
    QVariant isActive;
    if (values.size() == dumpValues)
        isActive = values.takeAt(isActiveInDump);
    else if (values.size() != EXTRACT_VALUES) {
        *error = QStringLiteral("%1 values; a row of the extract has %2 (%3 as dumped from the table)")
                     .arg(values.size())
                     .arg(int(EXTRACT_VALUES))
                     .arg(dumpValues);
        return {};
    }

    Fields fields(values);
    ChamberData chamber;
    chamber.chamberTypeId = ChamberTypeId(quint64(fields.number(TYPE_ID, 0, INT_MAX, 0)),
                                          quint64(fields.number(ADDITIONAL_INFO_ID, 0, INT_MAX, 0)));
    chamber.serialNumber = fields.text(SERIAL_NUMBER);
    chamber.isArchived = fields.flag(IS_ARCHIVED);
    chamber.isSubscribed = fields.flag(IS_SUBSCRIBED);
    chamber.activationState = ActivationState::UNKNOWN_STATE;
    if (isActive.isValid()) {
        if (isActive.type() != QVariant::LongLong || isActive.toLongLong() < 0 || isActive.toLongLong() > 1)
            fields.fail(
                QStringLiteral("is_active must be a whole number from 0 to 1, not '%1'").arg(isActive.toString()));
        chamber.activationState = isActive.toLongLong() == 1 ? ActivationState::ACTIVE : ActivationState::INACTIVE;
    }
    chamber.chamberName = fields.text(NAME);
    // One address for the chamber: the IPv4 one where there is one.
    const Value address = fields.isNull(IPV4_ADDRESS) ? IPV6_ADDRESS : IPV4_ADDRESS;
    if (!fields.isNull(address)) {
        chamber.ipAddress = QHostAddress(fields.text(address));
        const bool fits = address == IPV4_ADDRESS ? chamber.ipAddress.protocol() == QAbstractSocket::IPv4Protocol
                                                  : chamber.ipAddress.protocol() == QAbstractSocket::IPv6Protocol;
        if (!fits)
            fields.fail(QStringLiteral("%1 '%2' is no such address")
                            .arg(QLatin1String(valueNames[address]), fields.text(address)));
    }
    const QString mac = fields.text(MAC_ADDRESS);
    chamber.macAddress = MacAddress(mac);
    if (!mac.isEmpty() && !chamber.macAddress.isValid())
        fields.fail(QStringLiteral("mac_address '%1' is no hardware address").arg(mac));
    chamber.modbusAddress = quint8(fields.number(MODBUS_ADDRESS, 0, highestModbusAddress, 0));
    chamber.comPort = fields.text(COM_PORT);
    chamber.parity = QSerialPort::Parity(fields.number(PARITY, -1, INT_MAX, -1));
    chamber.baudRate = QSerialPort::BaudRate(fields.number(BAUD_RATE, -1, INT_MAX, -1));
    chamber.dataBits = QSerialPort::DataBits(fields.number(DATA_BITS, -1, INT_MAX, -1));
    chamber.stopBits = QSerialPort::StopBits(fields.number(STOP_BITS, -1, INT_MAX, -1));
    chamber.protocol =
        ChamberProtocol(fields.number(PROTOCOL, INT_MIN, INT_MAX, zelmor::domain::types::UNKNOWN_PROTOCOL));
    chamber.converter = Converter(fields.number(CONVERTER, INT_MIN, INT_MAX, zelmor::domain::types::NO_CONVERTER));
    if (!fields.error().isEmpty()) {
        *error = fields.error();
        return {};
    }
    return chamber;
}

bool ExtractReader::read(const QString& text)
{
    rows_.clear();
    errorLine_ = 0;
    errorText_.clear();
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int index = 0; index < lines.size(); ++index) {
        const QString& line = lines.at(index);
        if (line.trimmed().isEmpty())
            continue;
        QString error;
        const ChamberData chamber = parseLine(line, &error);
        if (!error.isEmpty()) {
            errorLine_ = index + 1;
            errorText_ = error;
            rows_.clear();
            return false;
        }
        rows_.append({index + 1, chamber});
    }
    return true;
}

} // namespace zelmor::tools::databasetool
