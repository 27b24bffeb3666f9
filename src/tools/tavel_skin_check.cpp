#include "skin_check.h"

#include <QtCore/QCoreApplication>

#include <cstdio>

/// Names the faults of a skin, one a line, as "file:line: fault".
/// Exit status 0 for a good skin, 1 for one with faults, 2 for a wrong command line.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2 || arguments.at(1).startsWith(QLatin1Char('-'))) {
        std::fputs("usage: tavel_skin_check DIR\n", stderr);
        return 2;
    }
    const SkinCheck check(arguments.at(1));
    for (const SkinCheck::Fault& fault : check.faults())
        std::printf("%s:%d: %s\n", qPrintable(check.file()), fault.line, qPrintable(fault.text));
    return check.faults().empty() ? 0 : 1;
}
