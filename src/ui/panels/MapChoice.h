#pragma once

#include <QObject>
#include <QVector>

#include "measurement/Measurement.h"

class QComboBox;
class QPushButton;

/// The list of the maps that hold values, and the press that masks those of a fit. Both follow the
/// measurement, whoever chooses.
class MapChoice : public QObject {
    Q_OBJECT

  public:
    /// The factor that a press of the mask sets.
    static constexpr double UsualMask = 5.0;

    MapChoice(Measurement& measurement, QComboBox* list, QPushButton* mask, QObject* parent);

    /// Lists and shows what there is now.
    void update();

  signals:
    void said(const Outcome& outcome, const QString& file = QString());

  private:
    struct Map {
        ResultId id;
        int reference;
        bool operator==(const Map& o) const { return id == o.id && reference == o.reference; }
    };

    void choose(int index);
    void press(bool on);
    void fillList();
    void showMask();
    Map chosen() const;

    Measurement& m_measurement;
    QComboBox* m_list;
    QPushButton* m_mask;
    QVector<Map> m_maps;  // as listed
};
