#pragma once

#include <QStringList>
#include <QtGlobal>

/// Collects the debug lines written during its life instead of printing them.
class DebugLines {
  public:
    DebugLines() {
        lines().clear();
        m_previous = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& text) { lines() << text; });
    }
    ~DebugLines() { qInstallMessageHandler(m_previous); }
    DebugLines(const DebugLines&) = delete;
    DebugLines& operator=(const DebugLines&) = delete;

    const QStringList& all() const { return lines(); }
    int countOf(const QString& start) const {
        int count = 0;
        for (const QString& line : lines()) {
            count += line.startsWith(start);
        }
        return count;
    }

  private:
    static QStringList& lines() {
        static QStringList collected;
        return collected;
    }
    QtMessageHandler m_previous = nullptr;
};
