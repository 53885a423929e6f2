#pragma once

#include <QString>
#include <QVariant>
#include <QXmlDefaultHandler>

namespace zelmor::simulation {

// The SAX classes are deprecated in Qt 5.15 and still the reader the value
// file format was made for.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

// One `value` element of a value file: an address, a type text and the
// element's text. Only the types "float" and "FLOAT" give a value.
class XmlValueTag : public QXmlDefaultHandler
{
public:
    bool startElement(const QString& namespaceURI, const QString& localName, const QString& qName,
                      const QXmlAttributes& atts) override;
    bool endElement(const QString& namespaceURI, const QString& localName, const QString& qName) override;
    bool characters(const QString& ch) override;
    // Prints the parser's message; the parser never sees this handler.
    bool error(const QXmlParseException& exception) override;

    int getAddress() const;
    // A float of the text (0.0 when it isn't a number), or an invalid
    // QVariant for any type other than "float" / "FLOAT".
    QVariant get() const;

private:
    QString type;
    QString value;
    int address = 0;
};

QT_WARNING_POP

} // namespace zelmor::simulation
