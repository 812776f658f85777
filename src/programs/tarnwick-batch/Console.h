#pragma once

#include <QString>
#include <functional>
#include <mutex>

class QIODevice;

/// Where an unattended batch speaks: the log on one stream, remarks on the other, and a progress
/// bar that never mixes with either. All texts are written as UTF-8 and at once. Any thread may
/// write.
class Console {
  public:
    /// The bar needs a terminal; it is drawn on err if that is one, otherwise on out.
    Console(QIODevice* out, QIODevice* err, bool outIsTerminal, bool errIsTerminal);

    /// From now on each text of the log begins a line of its own, with the time of day.
    void tellTimes() { m_tellsTimes = true; }

    /// From now on notes begin lines of their own in the log: both streams are one file.
    void shareLines() { m_sharesLines = true; }

    /// How wide the terminal is, in columns; 80 without.
    void setColumns(const std::function<int()>& columns) { m_columns = columns; }

    /// Adds to the log as it stands; a text need not end a line.
    void log(const QString& text);
    /// Adds a line of its own to the log.
    void logLine(const QString& line);
    /// The same, with the time of day where the log tells it.
    void tell(const QString& line);
    /// Writes a line of its own to err.
    void note(const QString& line);

    /// There is a terminal for a bar.
    bool showsBar() const { return m_outIsTerminal || m_errIsTerminal; }
    /// Shows how far a piece of work is, fraction 0 to 1, on one line of the terminal.
    void showBar(const QString& what, double fraction, const QString& count);
    void clearBar();

  private:
    void eraseBar();
    void endLogLineOnTerminal();
    void endLogLine();
    void writeOut(const QString& text);

    std::mutex m_mutex;
    QIODevice* m_out;
    QIODevice* m_err;
    bool m_outIsTerminal;
    bool m_errIsTerminal;
    bool m_tellsTimes = false;
    bool m_sharesLines = false;
    bool m_logInLine = false;     // the log's last text did not end its line
    bool m_cursorInLine = false;  // nor has anything else on the terminal ended it
    std::function<int()> m_columns;
    QString m_bar;  // as drawn
};
