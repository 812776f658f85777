#include <cmath>

#include "Fuzz.h"
#include "tarnwick-batch/RunnerOptions.h"

// The command line of tarnwick-batch. An input is its arguments, a line each.

void fuzz(const QByteArray& input) {
    QStringList args = QString::fromUtf8(input).split(QLatin1Char('\n'));
    args.prepend(QStringLiteral("tarnwick-batch"));
    using Action = RunnerOptions::Action;
    const RunnerOptions o = RunnerOptions::parse(args);
    const bool isTold = o.action == Action::Help || o.action == Action::BadUsage;
    require(isTold != o.text.isEmpty(), "help and wrong usage have a text:", o.text);
    if (isTold || o.action == Action::Version) {
        return;
    }
    require(!o.file.isNull(), "a file is named");
    require(o.threads >= 0 && o.threads <= 1024, "threads");
    require(o.part >= 0 && o.part <= o.parts, "a share of as many");
    require(o.part == 0 || !o.work.isEmpty(), "shares have a folder");
    require(o.from >= 0 && std::isfinite(o.progressSeconds) && o.progressSeconds >= 0.0, "numbers");
    require(o.report.isEmpty() || o.report != o.summary, "two files");
    for (const QString& name : {o.work, o.report, o.summary}) {
        require(name.isEmpty() || name.startsWith(QLatin1Char('/')), "an absolute name:", name);
    }
    for (const NamedText& text : o.texts) {
        require(text.name.size() >= 2, "a name has two letters");
    }
}
