#pragma once

class QTranslator;

/// Loads the compiled-in Japanese translation and installs it, also when the load failed (the
/// texts then stay English). Must be called before any window is made.
void installJapanese(QTranslator* translator);
