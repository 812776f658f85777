#include "frames/CountFile.h"

#include "frames/PlainCounts.h"

std::shared_ptr<CountFile> countFileOf(const QString& name, const FileState& state,
                                       const FrameHeader& header) {
    return std::make_shared<PlainCounts>(name, state, header);
}
