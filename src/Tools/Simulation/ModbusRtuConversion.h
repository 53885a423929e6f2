#pragma once

#include <QByteArray>

class QVariant;

namespace zelmor::simulation {

// The byte forms of values in RTU frames through a converter. They differ on
// purpose from the word forms of the Modbus TCP chamber: 32-bit integers go
// high byte first, a true boolean is 00 01, and 16-bit, 8-bit and text values
// keep their true bytes.

// A value as it stands in a read reply: Bool 2 bytes (00 01 / 00 00); Int,
// UInt 4 bytes big-endian; Float its IEEE bits as b1 b0 b3 b2; Short, UShort
// 2 bytes big-endian; Char 1 byte; a list its elements through
// convertQVariantFromList, joined; QString its bytes. Any other type, an
// invalid value included, gives no bytes at all.
QByteArray convertQVariant(const QVariant& value);

// An element of a data logger record: as convertQVariant, except that Int,
// UInt and Float are little-endian, and that lists and texts give no bytes.
QByteArray convertQVariantFromList(const QVariant& value);

// Bytes of a write turned into a value of the type of `example`: Bool from
// byte 1, Int and UInt from bytes 0 to 3 big-endian, Float from b1 b0 b3 b2;
// every other example, an invalid one included, gives a QMetaType::Short
// from bytes 0 and 1, big-endian. Bytes beyond the end count as 0.
QVariant convertQVariant(const QByteArray& bytes, const QVariant& example);

} // namespace zelmor::simulation
