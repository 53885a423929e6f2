#include "Tools/Simulation/ConsoleOutput.h"

#include <QFile>
#include <QTextStream>

#include <cstdio>

namespace zelmor::simulation {

namespace {

// The file is declared first so that the stream, which flushes into it when
// destroyed at exit, goes first.
struct Console
{
    explicit Console(FILE* file)
    {
        standardOutput.open(file, QIODevice::WriteOnly);
        stream.setDevice(&standardOutput);
    }

    QFile standardOutput;
    QTextStream stream;
};

} // namespace

QTextStream& consoleOutput()
{
    static Console console(stdout);
    return console.stream;
}

QTextStream& errorOutput()
{
    static Console console(stderr);
    return console.stream;
}

QTextStream& consoleEndLine(QTextStream& stream)
{
    stream << "\r\n";
    stream.flush();
    return stream;
}

} // namespace zelmor::simulation
