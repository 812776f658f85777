#pragma once

#include <vector>

#include "batch/Action.h"
#include "batch/BatchTexts.h"
#include "batch/CommandTables.h"

// The rows of the command table, a file for each part of the program.

void addStackCommands(std::vector<CommandRow>* rows);
void addViewCommands(std::vector<CommandRow>* rows);
void addSaveCommands(std::vector<CommandRow>* rows);
void addAreaCommands(std::vector<CommandRow>* rows);
void addAnalyzerCommands(std::vector<CommandRow>* rows);
void addMapCommands(std::vector<CommandRow>* rows);
void addCalibrationCommands(std::vector<CommandRow>* rows);
void addSaveFormCommands(std::vector<CommandRow>* rows);
