#include "batch/CmdLine.h"

#include "batch/LineItems.h"

CmdLine CmdLine::parse(const QString& line) {
    CmdLine parsed;
    parsed.text = line;
    if (line.isEmpty()) {
        return parsed;
    }
    QString rest = takeItem(line, &parsed.command);
    while (!rest.isEmpty()) {
        QString item;
        rest = takeItem(rest, &item);
        if (!item.isEmpty()) {
            parsed.args.append(item);
        }
    }
    parsed.isControl = parsed.command.startsWith(QLatin1Char(':'));
    return parsed;
}
