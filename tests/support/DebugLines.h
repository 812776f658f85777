#pragma once

#include <QStringList>
#include <QtGlobal>
#include <mutex>

/// Collects the debug lines written during its life, by any thread, instead of printing them.
class DebugLines {
  public:
    DebugLines() {
        lines().clear();
        m_previous =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
                static std::mutex mutex;
                const std::lock_guard<std::mutex> lock(mutex);
                lines() << text;
            });
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
