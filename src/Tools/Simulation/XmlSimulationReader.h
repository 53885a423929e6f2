#pragma once

#include "Tools/Simulation/ListOfTimeTags.h"
#include "Tools/Simulation/SimulationReader.h"

#include <QDateTime>
#include <QSharedPointer>
#include <QString>
#include <QVector>
#include <QXmlDefaultHandler>

namespace zelmor::simulation {

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

// Plays a value file: for every address the value the file gives it at the
// seconds since construction. Every address answers (0.0 when the file
// doesn't name it yet); writes are taken and have no effect.
//
// The file is parsed completely in the constructor. A file that can't be
// opened gives an empty reader; a document that breaks off keeps the tags
// read up to the break.
class XmlSimulationReader : public SimulationReader, public QXmlDefaultHandler
{
public:
    explicit XmlSimulationReader(QString path);

    QVariant read(int address) override;
    bool write(int address, QVariant value) override;
    QVariant getType(int address) override;

    bool startDocument() override;
    bool endDocument() override;
    bool startElement(const QString& namespaceURI, const QString& localName, const QString& qName,
                      const QXmlAttributes& atts) override;
    bool endElement(const QString& namespaceURI, const QString& localName, const QString& qName) override;
    bool characters(const QString& ch) override;

protected:
    // The moment of construction, from which the script's seconds count.
    QDateTime getStart() const;
    // The clock that reads compare with the start.
    virtual QDateTime getCurrentDateTime() const;

private:
    ListOfTimeTags timeTags;
    QVector<QSharedPointer<QXmlDefaultHandler>> handlers;
    QDateTime start;
};

QT_WARNING_POP

} // namespace zelmor::simulation
