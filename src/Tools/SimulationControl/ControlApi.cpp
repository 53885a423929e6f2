#include "Tools/SimulationControl/ControlApi.h"

#include "Domain/Types/ChamberProtocol.h"
#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ChamberSimulation.h"
#include "Tools/Simulation/ChamberTypeDump.h"
#include "Tools/Simulation/ModbusChamberSimulation.h"
#include "Tools/Simulation/SimulationReader.h"
#include "Tools/SimulationControl/ChamberFaults.h"
#include "Tools/SimulationControl/ControlPage.h"
#include "Tools/SimulationControl/ControlRequest.h"
#include "Tools/SimulationControl/ControlResponse.h"
#include "Tools/SimulationControl/PrometheusMetrics.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QVariant>

#include <cmath>

namespace zelmor::simulation::control {

namespace {

constexpr int ok = 200;
constexpr int badRequest = 400;
constexpr int notFound = 404;
constexpr int methodNotAllowed = 405;
constexpr int conflict = 409;

constexpr char htmlType[] = "text/html; charset=utf-8";
constexpr char metricsType[] = "text/plain; version=0.0.4; charset=utf-8";

// Digits enough to tell every float from its neighbours.
constexpr int floatDigits = 9;

// The largest integer a JSON number (a double) carries exactly.
constexpr double largestExactInteger = 9007199254740992.0;

ControlResponse notAllowed(const ControlRequest& request, const QByteArray& allowed)
{
    ControlResponse response = ControlResponse::error(
        methodNotAllowed, QStringLiteral("%1 is not allowed on %2; allowed: %3")
                              .arg(QString::fromLatin1(request.method), request.path, QString::fromLatin1(allowed)));
    response.headers.append(qMakePair(QByteArray("Allow"), allowed));
    return response;
}

bool isRead(const ControlRequest& request)
{
    return request.method == "GET" || request.method == "HEAD";
}

// A body of one JSON scalar; Qt's parser takes only arrays and objects.
bool parseScalar(const QByteArray& body, QJsonValue* value)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson('[' + body + ']', &error);
    if (error.error != QJsonParseError::NoError || document.array().size() != 1)
        return false;
    *value = document.array().at(0);
    return true;
}

// Reader addresses are written in hexadecimal, as the catalogue has them.
bool parseAddress(const QString& text, int* address)
{
    QString digits = text;
    if (digits.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        digits = digits.mid(2);
    bool ok = false;
    const qulonglong number = digits.toULongLong(&ok, 16);
    if (!ok || digits.isEmpty() || number > qulonglong(INT_MAX))
        return false;
    *address = int(number);
    return true;
}

QString addressText(int address)
{
    return QStringLiteral("0x") + QString::number(address, 16).toUpper().rightJustified(4, QLatin1Char('0'));
}

// A float by its shortest decimal text, so that 23.3 is not 23.299999237060547.
QJsonValue toJson(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Float: {
        const float number = value.toFloat();
        for (int digits = 1; digits < floatDigits; ++digits) {
            const QString text = QString::number(double(number), 'g', digits);
            if (text.toFloat() == number)
                return text.toDouble();
        }
        return double(number);
    }
    case QMetaType::Double:
        return value.toDouble();
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return double(value.toLongLong());
    case QMetaType::QVariantList: {
        QJsonArray array;
        for (const QVariant& element : value.toList())
            array.append(toJson(element));
        return array;
    }
    default:
        return value.toString();
    }
}

// A JSON number as a client would send it: whole numbers as integers, so
// that large unsigned values keep their bits.
QVariant fromJson(const QJsonValue& value)
{
    if (value.isBool())
        return value.toBool();
    const double number = value.toDouble();
    if (std::trunc(number) == number && std::fabs(number) <= largestExactInteger)
        return qlonglong(number);
    return number;
}

QJsonObject faultsJson(const ChamberFaults& faults)
{
    const ChamberFaults::Settings settings = faults.getSettings();
    return {{QStringLiteral("delayMs"), settings.delayMs},
            {QStringLiteral("dropRate"), settings.dropRate},
            {QStringLiteral("errorRate"), settings.errorRate},
            {QStringLiteral("strayRate"), settings.strayRate}};
}

bool parseBool(const QString& text, bool* value)
{
    if (text == QLatin1String("true") || text == QLatin1String("false")) {
        *value = text == QLatin1String("true");
        return true;
    }
    return false;
}

} // namespace

ControlApi::ControlApi(QList<QSharedPointer<ChamberSimulation>> chambers, quint32 seed)
    : chambers(std::move(chambers))
{
    faults.resize(this->chambers.size());
    for (int id = 0; id < this->chambers.size(); ++id) {
        if (!this->chambers.at(id)->acceptsFaults())
            continue;
        faults[id] = QSharedPointer<ChamberFaults>::create(seed + quint32(id));
        this->chambers.at(id)->setFaultPolicy(faults.at(id));
    }
}

ControlApi::~ControlApi() = default;

ControlResponse ControlApi::handle(const ControlRequest& request)
{
    QStringList parts = request.path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (parts.isEmpty()) {
        if (!isRead(request))
            return notAllowed(request, "GET, HEAD");
        return ControlResponse::text(ok, htmlType, ControlPage::html());
    }
    const QString resource = parts.takeFirst();
    if (resource == QLatin1String("metrics") && parts.isEmpty()) {
        if (!isRead(request))
            return notAllowed(request, "GET, HEAD");
        return ControlResponse::text(ok, metricsType, PrometheusMetrics::render(chambers));
    }
    if (resource == QLatin1String("chambers")) {
        if (parts.isEmpty()) {
            if (!isRead(request))
                return notAllowed(request, "GET, HEAD");
            return listChambers(request);
        }
        bool isNumber = false;
        const int id = parts.first().toInt(&isNumber, 10);
        if (!isNumber || id < 0 || id >= chambers.size() || parts.first().startsWith(QLatin1Char('+')))
            return ControlResponse::error(
                notFound,
                QStringLiteral("no chamber %1; ids run from 0 to %2").arg(parts.first()).arg(chambers.size() - 1));
        parts.removeFirst();
        return handleChamber(id, parts, request);
    }
    return ControlResponse::error(notFound, QStringLiteral("no resource %1").arg(request.path));
}

QJsonObject ControlApi::describe(int id) const
{
    const ChamberSimulation& chamber = *chambers.at(id);
    const QSharedPointer<domain::types::ChamberTypeData> type = chamber.getChamberType();
    const auto* const serial = dynamic_cast<const ModbusChamberSimulation*>(&chamber);
    const int protocol = chamber.getProtocolId();
    const int slave = serial ? serial->getServerAddress() : chamber.getModbusAddress();
    const ChamberStatistics& statistics = chamber.getStatistics();
    return {{QStringLiteral("id"), id},
            {QStringLiteral("type"), type ? type->getQualifiedTypeName() : QString()},
            {QStringLiteral("typeId"), type ? double(type->chamberTypeId.typeId) : 0.0},
            {QStringLiteral("controller"), type ? type->controller : QString()},
            {QStringLiteral("protocol"), getProtocolString(domain::types::ChamberProtocol(protocol))},
            {QStringLiteral("address"), serial ? serial->getSerialPortName() : chamber.getIpAddress()},
            {QStringLiteral("port"), chamber.getPort() > 0 ? QJsonValue(chamber.getPort()) : QJsonValue()},
            {QStringLiteral("slave"), slave > 0 ? QJsonValue(slave) : QJsonValue()},
            {QStringLiteral("online"), chamber.isOnline()},
            {QStringLiteral("clients"), chamber.getClientCount()},
            {QStringLiteral("requests"), double(statistics.getRequests())},
            {QStringLiteral("errors"), double(statistics.getErrors())},
            {QStringLiteral("faults"), faults.at(id) ? QJsonValue(faultsJson(*faults.at(id))) : QJsonValue()}};
}

// The cheap tests first: a list of 1000 chambers is walked for each request.
bool ControlApi::matches(int id, const ControlRequest& request) const
{
    const ChamberSimulation& chamber = *chambers.at(id);
    const auto wanted = [&request](const char* name) {
        return request.queryValue(QLatin1String(name)) == QLatin1String("true");
    };
    if (request.hasQueryItem(QStringLiteral("online")) && chamber.isOnline() != wanted("online"))
        return false;
    if (request.hasQueryItem(QStringLiteral("faulty"))
        && (faults.at(id) && faults.at(id)->isActive()) != wanted("faulty"))
        return false;
    const QString protocol = getProtocolString(domain::types::ChamberProtocol(chamber.getProtocolId()));
    if (request.hasQueryItem(QStringLiteral("protocol"))
        && protocol.compare(request.queryValue(QStringLiteral("protocol")), Qt::CaseInsensitive) != 0)
        return false;
    const QString text = request.queryValue(QStringLiteral("q")).trimmed();
    if (!request.hasQueryItem(QStringLiteral("address")) && !request.hasQueryItem(QStringLiteral("slave"))
        && text.isEmpty())
        return true;

    const QJsonObject object = describe(id);
    if (request.hasQueryItem(QStringLiteral("address"))
        && object.value(QStringLiteral("address")).toString() != request.queryValue(QStringLiteral("address")))
        return false;
    if (request.hasQueryItem(QStringLiteral("slave"))
        && object.value(QStringLiteral("slave")).toInt(-1) != request.queryValue(QStringLiteral("slave")).toInt())
        return false;
    if (text.isEmpty())
        return true;
    bool found = QString::number(id) == text;
    for (const char* field : {"type", "controller", "protocol", "address"})
        found = found || object.value(QLatin1String(field)).toString().contains(text, Qt::CaseInsensitive);
    return found;
}

ControlResponse ControlApi::listChambers(const ControlRequest& request) const
{
    for (const char* name : {"slave", "offset", "limit"}) {
        bool isNumber = true;
        if (request.hasQueryItem(QLatin1String(name))
            && (request.queryValue(QLatin1String(name)).toInt(&isNumber) < 0 || !isNumber))
            return ControlResponse::error(badRequest, QStringLiteral("%1 must be a whole number from 0").arg(name));
    }
    for (const char* name : {"online", "faulty"}) {
        bool value = false;
        if (request.hasQueryItem(QLatin1String(name)) && !parseBool(request.queryValue(QLatin1String(name)), &value))
            return ControlResponse::error(badRequest, QStringLiteral("%1 must be true or false").arg(name));
    }
    const int offset = request.queryValue(QStringLiteral("offset")).toInt();
    const int limit = request.hasQueryItem(QStringLiteral("limit"))
                          ? request.queryValue(QStringLiteral("limit")).toInt()
                          : defaultPageSize_;
    QJsonArray page;
    int total = 0;
    for (int id = 0; id < chambers.size(); ++id) {
        if (!matches(id, request))
            continue;
        if (total >= offset && page.size() < limit)
            page.append(describe(id));
        ++total;
    }
    ControlResponse response = ControlResponse::json(ok, QJsonDocument(page));
    response.headers.append(qMakePair(QByteArray("X-Total-Count"), QByteArray::number(total)));
    return response;
}

ControlResponse ControlApi::handleChamber(int id, const QStringList& rest, const ControlRequest& request)
{
    if (rest.isEmpty()) {
        if (!isRead(request))
            return notAllowed(request, "GET, HEAD");
        return ControlResponse::json(ok, QJsonDocument(describe(id)));
    }
    if (rest == QStringList{QStringLiteral("online")})
        return handleOnline(id, request);
    if (rest == QStringList{QStringLiteral("faults")})
        return handleFaults(id, request);
    if (rest.size() == 2 && rest.first() == QLatin1String("values"))
        return handleValue(id, rest.at(1), request);
    return ControlResponse::error(notFound, QStringLiteral("no resource %1").arg(request.path));
}

ControlResponse ControlApi::handleOnline(int id, const ControlRequest& request)
{
    ChamberSimulation& chamber = *chambers.at(id);
    if (isRead(request))
        return ControlResponse::text(ok, "application/json", chamber.isOnline() ? "true\n" : "false\n");
    if (request.method != "PUT")
        return notAllowed(request, "GET, HEAD, PUT");
    QJsonValue value;
    if (!parseScalar(request.body, &value) || !value.isBool())
        return ControlResponse::error(badRequest, QStringLiteral("the body must be true or false"));
    if (!chamber.setOnline(value.toBool()))
        return ControlResponse::error(conflict,
                                      QStringLiteral("chamber %1 could not go %2")
                                          .arg(id)
                                          .arg(value.toBool() ? QLatin1String("online") : QLatin1String("offline")));
    return ControlResponse::json(ok, QJsonDocument(describe(id)));
}

ControlResponse ControlApi::handleFaults(int id, const ControlRequest& request)
{
    ChamberFaults* const chamberFaults = faults.at(id).get();
    if (!chamberFaults)
        return ControlResponse::error(conflict, QStringLiteral("chamber %1 takes no faults").arg(id));
    if (isRead(request))
        return ControlResponse::json(ok, QJsonDocument(faultsJson(*chamberFaults)));
    if (request.method == "DELETE") {
        chamberFaults->clear();
        return ControlResponse::json(ok, QJsonDocument(faultsJson(*chamberFaults)));
    }
    if (request.method != "PUT")
        return notAllowed(request, "GET, HEAD, PUT, DELETE");

    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(request.body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return ControlResponse::error(
            badRequest,
            QStringLiteral("the body must be a JSON object: %1")
                .arg(error.error != QJsonParseError::NoError ? error.errorString() : QStringLiteral("an array")));
    const QJsonObject object = document.object();
    // What is left out is no fault: a PUT replaces the whole set.
    ChamberFaults::Settings settings;
    for (auto field = object.constBegin(); field != object.constEnd(); ++field) {
        if (!field.value().isDouble())
            return ControlResponse::error(badRequest, QStringLiteral("%1 must be a number").arg(field.key()));
        const double number = field.value().toDouble();
        if (field.key() == QLatin1String("delayMs")) {
            if (number != std::trunc(number) || std::fabs(number) > ChamberFaults::maximumDelayMs_)
                return ControlResponse::error(
                    badRequest,
                    QStringLiteral("delayMs must be a whole number from 0 to %1").arg(ChamberFaults::maximumDelayMs_));
            settings.delayMs = int(number);
        } else if (field.key() == QLatin1String("dropRate")) {
            settings.dropRate = number;
        } else if (field.key() == QLatin1String("errorRate")) {
            settings.errorRate = number;
        } else if (field.key() == QLatin1String("strayRate")) {
            settings.strayRate = number;
        } else {
            return ControlResponse::error(badRequest,
                                          QStringLiteral("unknown field %1; known: delayMs, dropRate, errorRate, "
                                                         "strayRate")
                                              .arg(field.key()));
        }
    }
    QString problem;
    if (!chamberFaults->setSettings(settings, &problem))
        return ControlResponse::error(badRequest, problem);
    return ControlResponse::json(ok, QJsonDocument(faultsJson(*chamberFaults)));
}

ControlResponse ControlApi::handleValue(int id, const QString& addressTextGiven, const ControlRequest& request)
{
    int address = 0;
    if (!parseAddress(addressTextGiven, &address))
        return ControlResponse::error(
            badRequest,
            QStringLiteral("%1 is no reader address: hexadecimal from 0 to 7FFFFFFF").arg(addressTextGiven));
    const bool reading = isRead(request);
    if (!reading && request.method != "PUT")
        return notAllowed(request, "GET, HEAD, PUT");
    const QSharedPointer<SimulationReader> reader = chambers.at(id)->getSimulationReader();
    if (!reader)
        return ControlResponse::error(notFound, QStringLiteral("chamber %1 has no reader").arg(id));

    QJsonObject answer{{QStringLiteral("address"), addressText(address)}};
    if (reading) {
        const QVariant value = reader->read(address);
        if (!value.isValid())
            return ControlResponse::error(
                notFound, QStringLiteral("chamber %1 has no value at %2").arg(id).arg(addressText(address)));
        answer.insert(QStringLiteral("value"), toJson(value));
        answer.insert(QStringLiteral("type"), QString::fromLatin1(value.typeName()));
        return ControlResponse::json(ok, QJsonDocument(answer));
    }
    QJsonValue value;
    if (!parseScalar(request.body, &value) || !(value.isDouble() || value.isBool()))
        return ControlResponse::error(badRequest, QStringLiteral("the body must be a JSON number or boolean"));
    if (!reader->write(address, fromJson(value)))
        return ControlResponse::error(
            notFound, QStringLiteral("chamber %1 has no writable value at %2").arg(id).arg(addressText(address)));
    answer.insert(QStringLiteral("value"), value);
    return ControlResponse::json(ok, QJsonDocument(answer));
}

} // namespace zelmor::simulation::control
