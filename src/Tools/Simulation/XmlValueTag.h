#pragma once

#include <QString>
#include <QVariant>
#include <QXmlDefaultHandler>

namespace zelmor {
namespace simulation {

// The SAX classes are deprecated in Qt 5.15 and still the reader the value
// file format was made for.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

/// One `value` element of a value file: an address, a type text and the
/// element's text. Only the types "float" and "FLOAT" give a value.
class XmlValueTag : public QXmlDefaultHandler
{
public:
    bool startElement(QString const& namespaceURI, QString const& localName,
                      QString const& qName, QXmlAttributes const& atts) override;
    bool endElement(QString const& namespaceURI, QString const& localName,
                    QString const& qName) override;
    bool characters(QString const& ch) override;
    /// Prints the parser's message; the parser never sees this handler.
    bool error(QXmlParseException const& exception) override;

    int getAddress() const;
    /// A float of the text (0.0 when it isn't a number), or an invalid
    /// QVariant for any type other than "float" / "FLOAT".
    QVariant get() const;

private:
    QString type;
    QString value;
    int address = 0;
};

QT_WARNING_POP

} // namespace simulation
} // namespace zelmor
