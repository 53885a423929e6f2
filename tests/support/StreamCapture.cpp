#include "support/StreamCapture.h"

#include <QTextStream>

namespace zelmor::testsupport {

StreamCapture::StreamCapture(QTextStream& stream)
    : stream(stream)
    , formerDevice(stream.device())
{
    stream.flush();
    buffer.open(QIODevice::WriteOnly);
    stream.setDevice(&buffer);
}

StreamCapture::~StreamCapture()
{
    stream.flush();
    stream.setDevice(formerDevice);
}

QByteArray StreamCapture::text()
{
    stream.flush();
    return buffer.data();
}

} // namespace zelmor::testsupport
