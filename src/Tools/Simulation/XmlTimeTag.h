#pragma once

#include <QList>
#include <QSharedPointer>
#include <QVariant>
#include <QXmlDefaultHandler>

namespace zelmor::simulation {

class XmlValueTag;

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

// One `time` element of a value file: the seconds from the start and the
// `value` elements that hold from then on.
class XmlTimeTag : public QXmlDefaultHandler
{
public:
    bool startElement(const QString& namespaceURI, const QString& localName, const QString& qName,
                      const QXmlAttributes& atts) override;
    bool endElement(const QString& namespaceURI, const QString& localName, const QString& qName) override;
    bool characters(const QString& ch) override;

    long long get() const;
    // The first value of this tag with the address, or an invalid QVariant.
    QVariant read(int address) const;

private:
    QList<QSharedPointer<XmlValueTag>> values;
    long long seconds = 0;
    QSharedPointer<XmlValueTag> currentValue;
};

QT_WARNING_POP

} // namespace zelmor::simulation
