#include "batch/CmdLine.h"

#include "batch/LineItems.h"

CmdLine CmdLine::parse(const QString& line) {
    CmdLine parsed;
    parsed.text = line;
    if (line.isEmpty()) {
        return parsed;
    }
    int place = 0;
    parsed.command = takeItemAt(line, &place);
    while (place < line.size()) {
        const QString item = takeItemAt(line, &place);
        if (!item.isEmpty()) {
            parsed.args.append(item);
        }
    }
    parsed.isControl = parsed.command.startsWith(QLatin1Char(':'));
    return parsed;
}
