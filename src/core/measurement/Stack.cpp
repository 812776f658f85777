#include "measurement/Stack.h"

#include <QDebug>
#include <QFileInfo>
#include <QRegularExpression>

#include "frames/EnergyFromName.h"
#include "measurement/Revision.h"

double frameEnergy(const QString& fileName, const NamePattern& names, int before) {
    // Compiled once, not for every file of a stack.
    thread_local QRegularExpression expression;
    if (expression.pattern() != names.pattern) {
        expression.setPattern(names.pattern);
    }
    QString matched;
    const std::optional<double> found = numberFromName(fileName, expression, &matched);
    if (found) {
        qDebug().noquote() << "match captured" << matched;
    }
    const double number = found.value_or(before - 1);
    const double energy = number * names.factor();
    qDebug().noquote() << "energy from file name" << fileName << ":" << energy;
    return energy;
}

Stack::Stack(StackId id) : m_id(id), m_revision(nextRevision()) {
    m_reader.moveToThread(&m_thread);
    connect(this, &Stack::load, &m_reader, &LoadTiff::loadTiff);
    connect(&m_reader, &LoadTiff::loaded, this, &Stack::loaded);
    m_thread.start(QThread::InheritPriority);
}

Stack::~Stack() {
    m_thread.quit();
    m_thread.wait();
}

QString Stack::name() const {
    return m_id == StackId::I1 ? QStringLiteral("I1") : QStringLiteral("I0");
}

void Stack::clear() {
    emit changing();
    m_loader.clear();
    m_files.clear();
    m_revision = nextRevision();
    emit changed();
}

void Stack::read(const QStringList& files) {
    m_loader.enqueue(files);
    emit progressed();
    loadNext();
}

void Stack::stop() {
    m_loader.stop();
    m_loader.takeFailures();
}

bool Stack::request() {
    bool requested = false;
    while (const auto next = m_loader.next()) {
        requested = true;
        emit load(next->fileName, next->frame);
    }
    return requested;
}

void Stack::loadNext() {
    if (!request() && !isLoading()) {
        emit finished();
    }
}

void Stack::loaded(TiffData* data) {
    std::unique_ptr<TiffData> frame = m_loader.arrived(data);
    request();  // the reader goes on while this frame is taken in and shown
    if (frame) {
        emit changing();
        frame->energy = frameEnergy(frame->fileName, m_names, size());
        m_files.append({QFileInfo(frame->fileName).absoluteFilePath(), frame->energy, m_names});
        frames().append(std::move(frame));
        m_revision = nextRevision();
        emit changed();
    }
    emit progressed();
    loadNext();
}
