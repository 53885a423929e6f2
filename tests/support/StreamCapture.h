#pragma once

#include <QBuffer>
#include <QByteArray>

class QIODevice;
class QTextStream;

namespace zelmor::testsupport {

// Puts a text stream (the tool's console, say) onto a buffer while it lives,
// and gives the stream its former device back at the end.
class StreamCapture
{
public:
    explicit StreamCapture(QTextStream& stream);
    ~StreamCapture();

    StreamCapture(const StreamCapture&) = delete;
    StreamCapture& operator=(const StreamCapture&) = delete;

    // Everything written so far, after a flush of the stream.
    QByteArray text();

private:
    QTextStream& stream;
    QIODevice* const formerDevice;
    QBuffer buffer;
};

} // namespace zelmor::testsupport
