#include "Tools/Simulation/ModbusRtuConversion.h"

#include <QVariant>
#include <QVariantList>

#include <cstring>

namespace zelmor::simulation {

namespace {

quint32 bitsOf(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

float floatOf(quint32 bits)
{
    float value = 0.0f;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

QByteArray bigEndian32(quint32 value)
{
    const char bytes[] = {char(value >> 24), char(value >> 16), char(value >> 8), char(value)};
    return QByteArray(bytes, sizeof bytes);
}

QByteArray littleEndian32(quint32 value)
{
    const char bytes[] = {char(value), char(value >> 8), char(value >> 16), char(value >> 24)};
    return QByteArray(bytes, sizeof bytes);
}

// The low word first, each word high byte first: b1 b0 b3 b2.
QByteArray swappedWords32(quint32 value)
{
    const char bytes[] = {char(value >> 8), char(value), char(value >> 24), char(value >> 16)};
    return QByteArray(bytes, sizeof bytes);
}

QByteArray bigEndian16(int value)
{
    const char bytes[] = {char(value >> 8), char(value)};
    return QByteArray(bytes, sizeof bytes);
}

QByteArray boolean(bool value)
{
    return bigEndian16(value ? 1 : 0);
}

// The forms that both conversions share; `handled` tells whether the type is one of them.
QByteArray commonForm(const QVariant& value, bool& handled)
{
    handled = true;
    switch (value.userType()) {
    case QMetaType::Bool:
        return boolean(value.toBool());
    case QMetaType::Short:
    case QMetaType::UShort:
        return bigEndian16(value.toInt());
    case QMetaType::Char:
        return QByteArray(1, char(value.toInt()));
    default:
        handled = false;
        return QByteArray();
    }
}

// Input bytes past the end read as 0.
quint32 byteAt(const QByteArray& bytes, int index)
{
    return index < bytes.size() ? quint32(quint8(bytes.at(index))) : 0u;
}

} // namespace

QByteArray convertQVariant(const QVariant& value)
{
    bool handled = false;
    QByteArray bytes = commonForm(value, handled);
    if (handled)
        return bytes;
    switch (value.userType()) {
    case QMetaType::Int:
        return bigEndian32(quint32(value.toInt()));
    case QMetaType::UInt:
        return bigEndian32(value.toUInt());
    case QMetaType::Float:
        return swappedWords32(bitsOf(value.toFloat()));
    case QMetaType::QVariantList:
        for (const QVariant& element : value.toList())
            bytes += convertQVariantFromList(element);
        return bytes;
    case QMetaType::QString:
        return value.toByteArray();
    default:
        return QByteArray();
    }
}

QByteArray convertQVariantFromList(const QVariant& value)
{
    bool handled = false;
    const QByteArray bytes = commonForm(value, handled);
    if (handled)
        return bytes;
    switch (value.userType()) {
    case QMetaType::Int:
        return littleEndian32(quint32(value.toInt()));
    case QMetaType::UInt:
        return littleEndian32(value.toUInt());
    case QMetaType::Float:
        return littleEndian32(bitsOf(value.toFloat()));
    default:
        return QByteArray();
    }
}

QVariant convertQVariant(const QByteArray& bytes, const QVariant& example)
{
    // The bytes by their position in the frame.
    const quint32 p0 = byteAt(bytes, 0);
    const quint32 p1 = byteAt(bytes, 1);
    const quint32 p2 = byteAt(bytes, 2);
    const quint32 p3 = byteAt(bytes, 3);
    const quint32 bigEndian = p0 << 24 | p1 << 16 | p2 << 8 | p3;
    switch (example.userType()) {
    case QMetaType::Bool:
        return QVariant(p1 != 0);
    case QMetaType::Int:
        return QVariant(int(bigEndian));
    case QMetaType::UInt:
        return QVariant(uint(bigEndian));
    case QMetaType::Float:
        // Sent as b1 b0 b3 b2.
        return QVariant(floatOf(p2 << 24 | p3 << 16 | p0 << 8 | p1));
    default:
        return QVariant::fromValue(short(p0 << 8 | p1));
    }
}

} // namespace zelmor::simulation
