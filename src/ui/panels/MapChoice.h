#pragma once

#include <QObject>
#include <QVector>

#include "measurement/Measurement.h"

class QComboBox;

/// The list of the maps that hold values. It follows the measurement, whoever chooses.
class MapChoice : public QObject {
    Q_OBJECT

  public:
    MapChoice(Measurement& measurement, QComboBox* list, QObject* parent);

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
    Map chosen() const;

    Measurement& m_measurement;
    QComboBox* m_list;
    QVector<Map> m_maps;  // as listed
};
