#include "tarnwick-batch/RunReport.h"

#include <QJsonDocument>

#include "files/WholeFile.h"

bool RunReport::open() {
    return m_file.open() && m_file.write("[") == 1;
}

void RunReport::add(const QJsonObject& entry) {
    m_file.write(m_isEmpty ? "\n" : ",\n");
    m_file.write(QJsonDocument(entry).toJson(QJsonDocument::Compact));
    m_isEmpty = false;
}

bool RunReport::close() {
    return m_file.write("\n]\n") > 0 && m_file.putInPlace() && noteSaved(fileName());
}
