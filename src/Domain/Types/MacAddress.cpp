#include "Domain/Types/MacAddress.h"

#include <QStringList>

namespace zelmor::domain::types {

namespace {

constexpr int macAddressLength = 6;

} // namespace

MacAddress::MacAddress() = default;

MacAddress::MacAddress(const QByteArray& bytes)
    : address(bytes)
{
}

MacAddress::MacAddress(const QString& text)
{
    QStringList parts = text.split(QLatin1Char('-'), Qt::SkipEmptyParts);
    if (parts.size() != macAddressLength) {
        parts = text.split(QLatin1Char(':'), Qt::SkipEmptyParts);
        if (parts.size() != macAddressLength) {
            return;
        }
    }
    for (const QString& part : parts) {
        bool ok = false;
        const int value = part.toInt(&ok, 16);
        address.append(static_cast<char>(ok ? (value & 0xff) : 0));
    }
}

MacAddress::MacAddress(const char* text)
    : MacAddress(QString::fromUtf8(text))
{
}

QString MacAddress::toString() const
{
    return QString::fromLatin1(address.toHex(':'));
}

bool MacAddress::isValid() const
{
    return !address.isEmpty();
}

bool operator==(const MacAddress& left, const MacAddress& right)
{
    return left.address.size() == right.address.size() && left.address == right.address;
}

bool operator!=(const MacAddress& left, const MacAddress& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
