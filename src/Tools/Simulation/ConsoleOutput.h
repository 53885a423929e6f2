#pragma once

class QTextStream;

namespace zelmor::simulation {

// The tool's console: its own text goes to standard output through this one
// plain stream, shared by the entry point, the fleet, the chamber servers
// and the responders, so that their lines keep their order.
//
// The stream writes to a device that stays open for the whole run. Its
// device may be swapped with setDevice() (tests capture the text that way)
// and set back afterwards; the stream never deletes it.
// Only call from the thread of the event loop.
QTextStream& consoleOutput();

// Standard error, for the few words the tool says about itself rather than
// about its chambers (see OpenFileLimit). Swappable like consoleOutput().
QTextStream& errorOutput();

// Ends a console line the tool's way, "\r\n", and flushes, so that the line
// is out before the next event even when the process is ended from outside.
// A manipulator: consoleOutput() << "text" << consoleEndLine;
QTextStream& consoleEndLine(QTextStream& stream);

} // namespace zelmor::simulation
