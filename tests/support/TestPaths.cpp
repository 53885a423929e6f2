#include "support/TestPaths.h"

#include <QByteArray>

namespace zelmor::testsupport {

namespace {

QString fromEnvironment(const char* name, const char* fallback)
{
    const QByteArray value = qgetenv(name);
    return value.isEmpty() ? QString::fromUtf8(fallback) : QString::fromLocal8Bit(value);
}

} // namespace

QString sourceDir()
{
    return fromEnvironment("ZELMOR_SOURCE_DIR", ZELMOR_DEFAULT_SOURCE_DIR);
}

QString binaryDir()
{
    return fromEnvironment("ZELMOR_BINARY_DIR", ZELMOR_DEFAULT_BINARY_DIR);
}

} // namespace zelmor::testsupport
