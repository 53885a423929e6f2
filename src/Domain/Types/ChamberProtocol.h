#pragma once

namespace zelmor::domain::types {

// The numbers are those of the catalogue's "protocol_id", taken over as they are.
enum ChamberProtocol : int {
    MODBUS_RTU = 1,
    MODBUS_RTU_TUNNEL = 2,
    MODBUS_TCP = 3,
    TLX = 4,
    VACUUBRAND = 5,
    // 6 and 7 have no protocol name in the catalogue; only what they count as is known:
    // 6 needs a Modbus address, 7 needs one and is serial.
    MODBUS_ADDRESSED = 6,
    MODBUS_ADDRESSED_SERIAL = 7,
    UNKNOWN_PROTOCOL = 100
};

} // namespace zelmor::domain::types
