#pragma once

/// Runs the windowed program in its fixed order of start-up: globals, application, command line,
/// translation, main window, batch file, batch, event loop. Returns the event loop's exit code.
int runTarnwick(int argc, char** argv);
