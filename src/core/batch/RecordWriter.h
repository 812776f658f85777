#pragma once

#include <QHash>
#include <QMap>
#include <QStringList>
#include <optional>

#include "measurement/Measurement.h"
#include "measurement/RecordLines.h"

/// The arguments of calib_set_edge_eV for a text of that field: none where it is no number.
QStringList edgeEnergyArgs(const QString& text);

/// Writes inputs and settings as batch lines, leaving out what is in force already: at first the
/// state of a program that has just started.
class RecordWriter {
  public:
    /// File names are written relative to the folder.
    explicit RecordWriter(const QString& folder);

    const QStringList& lines() const { return m_lines; }
    /// Why the batch language cannot say what it should; nothing: it can.
    const std::optional<RecordLines>& failure() const { return m_failure; }
    /// Names of files with their digests, in the order in which they are used.
    const QVector<QPair<QString, QByteArray>>& digests() const { return m_digests; }

    /// What this work goes by.
    void inputs(const Inputs& in, Work work);
    void frames(const Inputs& in);
    void references(const std::vector<ReferenceInput>& references);
    void standard(const FileInput& file, int background);
    void map(const std::shared_ptr<const MapInput>& map);

    /// Puts a result on display and processes it as it is.
    void show(const Result& result);
    void scaleOf(const ResultKind& kind, const Settings& settings);
    void mask(const Settings& settings);
    /// The form in which results are saved, with the options of one of the forms.
    void saveForm(const Settings& settings, DataForm form);
    void viewRange(const ViewRange& range);
    /// What frames show, with the ranges of that.
    void frameView(const Settings& settings);
    /// How maps, or those of a kind, and frames are looked at.
    void views(const MapViews& views);
    void view(ResultId id, const MapViews& views);

    /// A line, unless the same one is in force under this key.
    void put(const QString& key, const QString& command, const QStringList& args = {});
    /// A line in any case.
    void line(const QString& command, const QStringList& args = {});
    /// What is in force under a key without a line of its own.
    void assume(const QString& key, const QString& value) { m_inForce[key] = value; }
    bool isInForce(const QString& key, const QString& value) const {
        const auto since = m_inForce.constFind(key);
        return (since != m_inForce.constEnd() ? *since : m_atStart.value(key)) == value;
    }

  private:
    void area(const Inputs& in);
    void stack(const char* name, const StackInputs& stack);
    void loadGroup(const char* name, bool first, const QVector<Stack::File>& files);
    bool energyIsKept(const Stack::File& file, const QString& relative, int before) const;
    void putFrameView(FrameView::Kind kind, const FrameView& view);
    QString fileName(const QString& path) const;
    void digest(const FileInput& file);
    void viewsAre(const char* key, const char* command, const std::vector<QStringList>& args);

    QString m_folder;
    QStringList m_lines;
    std::optional<RecordLines> m_failure;
    const QHash<QString, QString>& m_atStart;  // of every batch
    QHash<QString, QString> m_inForce;         // since then
    QVector<QPair<QString, QByteArray>> m_digests;
    int m_references = 0;
};
