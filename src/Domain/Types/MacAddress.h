#pragma once

#include <QByteArray>
#include <QString>

namespace zelmor::domain::types {

// A hardware address as raw bytes; an invalid address is empty.
class MacAddress
{
public:
    MacAddress();
    // Takes the bytes as they are.
    explicit MacAddress(const QByteArray& bytes);
    // Six hexadecimal parts, all separated by "-" or all by ":". Anything else gives
    // an empty address. A part that is no number reads as 0, a longer one keeps its
    // low byte; neither is reported.
    MacAddress(const QString& text);
    // Through the text constructor; a null pointer is the empty text.
    MacAddress(const char* text);

    // "00:1a:2b:3c:4d:5e", lower case, whatever separator the input had.
    QString toString() const;
    bool isValid() const;

    QByteArray address;
};

bool operator==(const MacAddress& left, const MacAddress& right);
bool operator!=(const MacAddress& left, const MacAddress& right);

} // namespace zelmor::domain::types
