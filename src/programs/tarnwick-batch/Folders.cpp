#include "tarnwick-batch/Folders.h"

QString Folders::place(int i) const {
    return areSeveral() ? QStringLiteral("folder %1 of %2").arg(i + 1).arg(count()) : QString();
}

bool Folders::enter(int i) const {
    return m_names.isEmpty() || QDir::setCurrent(m_start.absoluteFilePath(m_names.at(i)));
}
