#include "measurement/Revision.h"

#include <atomic>

quint64 nextRevision() {
    static std::atomic<quint64> last{0};
    return ++last;
}
