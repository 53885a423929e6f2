// How parsing and reading a value file grow with the number of time tags.
// Each tag holds one value; a read at the end of the script walks every tag.

#include "Tools/Simulation/XmlSimulationReader.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <cstdio>

using zelmor::simulation::XmlSimulationReader;

namespace {

class SteppedClockReader : public XmlSimulationReader
{
public:
    using XmlSimulationReader::XmlSimulationReader;

    void setElapsedSeconds(qint64 seconds) { elapsedSeconds = seconds; }

protected:
    QDateTime getCurrentDateTime() const override { return getStart().addSecs(elapsedSeconds); }

private:
    qint64 elapsedSeconds = 0;
};

qint64 writeScript(const QString& path, int tagCount)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return -1;
    QByteArray document = "<script>\n";
    for (int i = 0; i < tagCount; ++i) {
        document += "<time seconds=\"" + QByteArray::number(i) + "\"><value address=\"0x1\">" + QByteArray::number(i)
                    + "</value></time>\n";
    }
    document += "</script>\n";
    return file.write(document);
}

double microsecondsPerRead(SteppedClockReader& reader, int address, int reads)
{
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < reads; ++i)
        reader.read(address);
    return double(timer.nsecsElapsed()) / 1000.0 / reads;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    if (!dir.isValid())
        return 1;

    QTextStream out(stdout);
    out << "tags\tbytes\tparse ms\tread at end us\tread of unnamed address us\tread at half us\n";
    for (int tagCount : {1000, 10000, 100000}) {
        const QString path = dir.filePath(QStringLiteral("script%1.xml").arg(tagCount));
        const qint64 bytes = writeScript(path, tagCount);
        if (bytes < 0)
            return 1;

        QElapsedTimer timer;
        timer.start();
        SteppedClockReader reader(path);
        const qint64 parseMs = timer.elapsed();

        const int reads = tagCount >= 100000 ? 20 : 200;
        reader.setElapsedSeconds(tagCount);
        const double atEnd = microsecondsPerRead(reader, 1, reads);
        const double unnamed = microsecondsPerRead(reader, 2, reads);
        reader.setElapsedSeconds(tagCount / 2);
        const double atHalf = microsecondsPerRead(reader, 1, reads);

        out << tagCount << '\t' << bytes << '\t' << parseMs << '\t' << atEnd << '\t' << unnamed << '\t' << atHalf
            << '\n';
        out.flush();
    }
    return 0;
}
