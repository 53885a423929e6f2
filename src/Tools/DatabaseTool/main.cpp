#include "Tools/DatabaseTool/DatabaseTool.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>
#include <unistd.h>

int main(int argc, char* argv[])
{
    // No event loop and no window: the application object gives the SQL
    // module and the standard paths what they need.
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zelmor-db"));
    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList arguments = QCoreApplication::arguments();
    arguments.removeFirst();
    return zelmor::tools::databasetool::DatabaseTool::run(arguments, out, err, ::isatty(STDERR_FILENO) == 1);
}
