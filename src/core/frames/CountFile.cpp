#include "frames/CountFile.h"

#include "frames/DecodedCounts.h"
#include "frames/PlainCounts.h"

std::shared_ptr<CountFile> countFileOf(const QString& name, const FileState& state,
                                       const FrameHeader& header) {
    if (header.plain.runs.empty()) {
        return std::make_shared<DecodedCounts>(name, state, header);
    }
    return std::make_shared<PlainCounts>(name, state, header);
}
