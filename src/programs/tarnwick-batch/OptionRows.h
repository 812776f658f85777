#pragma once

#include <optional>
#include <vector>

#include "tarnwick-batch/RunnerOptions.h"

/// One option of tarnwick-batch. Adding one is adding a row.
struct OptionRow {
    using Action = RunnerOptions::Action;
    /// Called once for each time the option is given, with its value (empty for a switch). Says
    /// what is wrong with it in one line, naming the option; empty: nothing.
    using Take = QString (*)(const QString& value, RunnerOptions* options);

    const char* name;              ///< without dashes; one letter has one dash, a word two
    const char* value;             ///< what the help calls its value; empty: it is a switch
    const char* help;              ///< what it does
    std::vector<Action> goesWith;  ///< empty: with all
    Take take;
    std::optional<Action> asks{};  ///< for this in place of a run; take is not called

    /// As it is typed: "-C", "--check".
    QString typed() const;
    bool fits(Action action) const;
};

/// In the order of the help text.
const std::vector<OptionRow>& optionRows();
