#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

namespace zelmor::simulation::control {

// One HTTP request as the control interface sees it: complete, its body
// within the server's limit.
struct ControlRequest
{
    QByteArray method;
    // Percent-decoded, without the query.
    QString path;
    // Percent-decoded names and values, in the order given.
    QList<QPair<QString, QString>> query;
    QByteArray body;

    QString queryValue(const QString& name) const
    {
        for (const auto& [key, value] : query) {
            if (key == name)
                return value;
        }
        return QString();
    }
    bool hasQueryItem(const QString& name) const
    {
        for (const auto& item : query) {
            if (item.first == name)
                return true;
        }
        return false;
    }
};

} // namespace zelmor::simulation::control
