#include "Tools/Simulation/XmlSimulationReader.h"

#include "Tools/Simulation/XmlTimeTag.h"

#include <QFile>
#include <QXmlInputSource>
#include <QXmlSimpleReader>

namespace zelmor::simulation {

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

namespace {

const QString timeElement_ = QStringLiteral("time");

} // namespace

XmlSimulationReader::XmlSimulationReader(QString path)
    : start(QDateTime::currentDateTime())
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return;

    QXmlSimpleReader reader;
    QXmlInputSource source(&file);
    reader.setContentHandler(this);
    reader.setErrorHandler(this);
    // A fatal error stops the parser; what was read up to there stays.
    reader.parse(&source);
    file.close();
}

QVariant XmlSimulationReader::read(int address)
{
    return timeTags.read(address, start.secsTo(getCurrentDateTime()));
}

bool XmlSimulationReader::write(int address, QVariant value)
{
    Q_UNUSED(address)
    Q_UNUSED(value)
    return true;
}

QVariant XmlSimulationReader::getType(int address)
{
    return read(address);
}

bool XmlSimulationReader::startDocument()
{
    return true;
}

bool XmlSimulationReader::endDocument()
{
    return true;
}

bool XmlSimulationReader::startElement(const QString& namespaceURI, const QString& localName, const QString& qName,
                                       const QXmlAttributes& atts)
{
    if (qName == timeElement_) {
        const auto tag = QSharedPointer<XmlTimeTag>::create();
        tag->startElement(namespaceURI, localName, qName, atts);
        timeTags.append(tag);
        handlers.append(tag);
    } else if (!handlers.isEmpty()) {
        handlers.last()->startElement(namespaceURI, localName, qName, atts);
    }
    return true;
}

bool XmlSimulationReader::endElement(const QString& namespaceURI, const QString& localName, const QString& qName)
{
    if (qName == timeElement_) {
        if (!handlers.isEmpty())
            handlers.removeLast();
    } else if (!handlers.isEmpty()) {
        handlers.last()->endElement(namespaceURI, localName, qName);
    }
    return true;
}

bool XmlSimulationReader::characters(const QString& ch)
{
    if (!handlers.isEmpty())
        handlers.last()->characters(ch);
    return true;
}

QDateTime XmlSimulationReader::getStart() const
{
    return start;
}

QDateTime XmlSimulationReader::getCurrentDateTime() const
{
    return QDateTime::currentDateTime();
}

QT_WARNING_POP

} // namespace zelmor::simulation
