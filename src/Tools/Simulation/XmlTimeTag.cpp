#include "Tools/Simulation/XmlTimeTag.h"

#include "Tools/Simulation/XmlValueTag.h"

namespace zelmor::simulation {

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

bool XmlTimeTag::startElement(const QString& namespaceURI, const QString& localName, const QString& qName,
                              const QXmlAttributes& atts)
{
    if (qName == QLatin1String("time")) {
        seconds = atts.value(QStringLiteral("seconds")).toLongLong(nullptr, 10);
    } else if (qName == QLatin1String("value")) {
        currentValue = QSharedPointer<XmlValueTag>::create();
        currentValue->startElement(namespaceURI, localName, qName, atts);
    }
    return true;
}

bool XmlTimeTag::endElement(const QString& namespaceURI, const QString& localName, const QString& qName)
{
    if (qName == QLatin1String("value")) {
        // A `value` nested in a `value` ends the outer one early; the outer
        // end then finds no value being read and must not append a null.
        if (currentValue) {
            values.append(currentValue);
            currentValue->endElement(namespaceURI, localName, qName);
        }
        currentValue.reset();
    } else if (currentValue) {
        currentValue->endElement(namespaceURI, localName, qName);
    }
    return true;
}

bool XmlTimeTag::characters(const QString& ch)
{
    if (currentValue)
        currentValue->characters(ch);
    return true;
}

long long XmlTimeTag::get() const
{
    return seconds;
}

QVariant XmlTimeTag::read(int address) const
{
    for (const auto& value : values) {
        if (value->getAddress() == address)
            return value->get();
    }
    return QVariant();
}

QT_WARNING_POP

} // namespace zelmor::simulation
