#include "base/DebugLog.h"

#include <QDateTime>
#include <QDebug>

void debugFile(const char* message, const QString& fileName) {
    qDebug().noquote() << message << fileName;
}

void debugTimed(const QString& message) {
    qDebug().noquote() << message << timeStamp();
}

QString timeStamp() {
    return QDateTime::currentDateTime().toString(QStringLiteral("yyMMdd hh:mm:ss.zzz"));
}
