#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

class QJsonDocument;

namespace zelmor::simulation::control {

// One HTTP answer of the control interface.
struct ControlResponse
{
    int status = 200;
    QByteArray contentType;
    QByteArray body;
    QList<QPair<QByteArray, QByteArray>> headers;

    static ControlResponse json(int status, const QJsonDocument& document);
    // {"error": message}
    static ControlResponse error(int status, const QString& message);
    static ControlResponse text(int status, const QByteArray& contentType, const QByteArray& body);
};

} // namespace zelmor::simulation::control
