#include "measurement/Room.h"

#include <algorithm>

#include "base/AddressSpace.h"
#include "base/Memory.h"
#include "measurement/Measurement.h"

Outcome judgeAddresses(quint64 bytes) {
    if (!isAddressSpaceLimited()) {
        return {};
    }
    giveBackFreeMemory();
    const quint64 limit = addressSpaceLimit();
    const quint64 held = limit - std::min(limit, addressSpaceLeft());
    const quint64 needed = held + bytes + HeadRoom;
    return needed <= limit
               ? Outcome()
               : Outcome::failure(
                     Measurement::tr("%1 of memory are needed, the limit of the system is %2 (this "
                                     "line: %3, the program and what it holds: %4)")
                         .arg(sizeText(needed), sizeText(limit), sizeText(bytes + HeadRoom),
                              sizeText(held)));
}

Outcome judgeRoomFor(const Measurement& measurement, quint64 bytes) {
    const Outcome addresses = judgeAddresses(bytes);
    if (addresses.failed() || !measurement.stack(StackId::I1).isInFiles()) {
        return addresses;
    }
    constexpr quint64 Small = quint64(1) << 20;  // of what is not counted
    giveBackFreeMemory();
    const quint64 held = residentMemory();
    const quint64 needed = held + bytes + Small;
    return needed <= memoryLimit()
               ? Outcome()
               : Outcome::failure(
                     Measurement::tr("%1 of memory are needed, the limit is %2 (this line: %3, the "
                                     "program and what it holds: %4)")
                         .arg(sizeText(needed), sizeText(memoryLimit()), sizeText(bytes + Small),
                              sizeText(held)));
}

Outcome judgeRoomForPixels(const Measurement& measurement, quint64 bytesEach) {
    const QSize size = measurement.imageSize();
    return size.isEmpty() ? Outcome()
                          : judgeRoomFor(measurement, bytesEach * quint64(size.width()) *
                                                          quint64(size.height()));
}
