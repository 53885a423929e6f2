#pragma once

class QString;
class QUdpSocket;

namespace zelmor::simulation {

// The answer of the serial-to-Ethernet converters' responders (XPort and
// Wut), which differ only in their port: takes one datagram from the
// socket, whatever it holds, prints "UDP Request from <address>:<port>" and
// answers the sender with 22 zero bytes followed by the six bytes of
// `macAddress` (28 bytes; 22 when the text is no hardware address).
void answerConverterSearch(QUdpSocket& socket, const QString& macAddress);

} // namespace zelmor::simulation
