#include "Tools/SimulationControl/ControlResponse.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace zelmor::simulation::control {

namespace {

constexpr char jsonType[] = "application/json";

} // namespace

ControlResponse ControlResponse::json(int status, const QJsonDocument& document)
{
    return text(status, jsonType, document.toJson(QJsonDocument::Compact) + '\n');
}

ControlResponse ControlResponse::error(int status, const QString& message)
{
    return json(status, QJsonDocument(QJsonObject{{QStringLiteral("error"), message}}));
}

ControlResponse ControlResponse::text(int status, const QByteArray& contentType, const QByteArray& body)
{
    ControlResponse response;
    response.status = status;
    response.contentType = contentType;
    response.body = body;
    return response;
}

} // namespace zelmor::simulation::control
