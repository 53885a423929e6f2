#include "Domain/Types/SmtpConfiguration.h"

namespace zelmor::domain::types {

SmtpConfiguration::SmtpConfiguration()
    : SmtpConfiguration(QString(), 0, -1, QString(), QString(), QString())
{
}

SmtpConfiguration::SmtpConfiguration(const QString& server, quint16 port, int connectionType, const QString& username,
                                     const QString& password, const QString& sender)
    : server(server)
    , port(port)
    , connectionType(connectionType)
    , username(username)
    , password(password)
    , sender(sender)
{
}

bool operator==(const SmtpConfiguration& left, const SmtpConfiguration& right)
{
    return left.server == right.server && left.port == right.port && left.connectionType == right.connectionType
           && left.username == right.username && left.password == right.password && left.sender == right.sender;
}

bool operator!=(const SmtpConfiguration& left, const SmtpConfiguration& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
