#pragma once

struct AskedBatch;
struct RunnerOptions;
class Console;

/// Prints how many stages a batch has, see BatchPlan::passes; of one with errors only these, on
/// standard error. The exit code.
int printStages(const AskedBatch& batch, const RunnerOptions& options, Console& console);
