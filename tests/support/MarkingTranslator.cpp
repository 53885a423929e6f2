#include "support/MarkingTranslator.h"

#include <QCoreApplication>

namespace zelmor::testsupport {

MarkingTranslator::MarkingTranslator()
{
    QCoreApplication::installTranslator(this);
}

MarkingTranslator::~MarkingTranslator()
{
    QCoreApplication::removeTranslator(this);
}

bool MarkingTranslator::isEmpty() const
{
    return false;
}

QString MarkingTranslator::translate(const char* context, const char* sourceText, const char*, int) const
{
    return QStringLiteral("[%1] %2").arg(QString::fromUtf8(context), QString::fromUtf8(sourceText));
}

} // namespace zelmor::testsupport
