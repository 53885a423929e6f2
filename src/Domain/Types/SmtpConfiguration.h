#pragma once

#include <QMetaType>
#include <QString>
#include <QtGlobal>

namespace zelmor::domain::types {

// The mail server through which alarms are sent: the "smtp_" columns of the
// global settings.
class SmtpConfiguration
{
public:
    // Empty texts, port 0, connection type -1 (none chosen).
    SmtpConfiguration();
    SmtpConfiguration(const QString& server, quint16 port, int connectionType, const QString& username,
                      const QString& password, const QString& sender);

    QString server;
    quint16 port;
    int connectionType; // plain, TLS and so on; only the number is stored
    QString username;
    QString password;
    QString sender;
};

bool operator==(const SmtpConfiguration& left, const SmtpConfiguration& right);
bool operator!=(const SmtpConfiguration& left, const SmtpConfiguration& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::SmtpConfiguration)
