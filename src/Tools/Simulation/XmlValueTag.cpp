#include "Tools/Simulation/XmlValueTag.h"

#include "Tools/Simulation/ConsoleOutput.h"

#include <QTextStream>

namespace zelmor::simulation {

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

namespace {

const QString valueElement_ = QStringLiteral("value");
const QString hexPrefix_ = QStringLiteral("0x");

} // namespace

bool XmlValueTag::startElement(const QString& namespaceURI, const QString& localName, const QString& qName,
                               const QXmlAttributes& atts)
{
    Q_UNUSED(namespaceURI)
    Q_UNUSED(localName)
    if (qName != valueElement_)
        return true;

    const QString addressText = atts.value(QStringLiteral("address"));
    // Only a lower-case prefix means hexadecimal; "0X1A" is no decimal number
    // either and so ends up as 0.
    if (addressText.startsWith(hexPrefix_))
        address = addressText.mid(hexPrefix_.size()).toInt(nullptr, 16);
    else
        address = addressText.toInt(nullptr, 10);

    type = atts.value(QStringLiteral("type"));
    if (type.isEmpty())
        type = QStringLiteral("float");
    return true;
}

bool XmlValueTag::endElement(const QString& namespaceURI, const QString& localName, const QString& qName)
{
    Q_UNUSED(namespaceURI)
    Q_UNUSED(localName)
    Q_UNUSED(qName)
    return true;
}

bool XmlValueTag::characters(const QString& ch)
{
    value.append(ch);
    return true;
}

bool XmlValueTag::error(const QXmlParseException& exception)
{
    consoleOutput() << exception.message() << consoleEndLine;
    return true;
}

int XmlValueTag::getAddress() const
{
    return address;
}

QVariant XmlValueTag::get() const
{
    if (type == QLatin1String("float") || type == QLatin1String("FLOAT"))
        return QVariant(value.toFloat());
    return QVariant();
}

QT_WARNING_POP

} // namespace zelmor::simulation
