#include "property_list/handmade_property_list.h"

namespace corvane {

Bytes bigEndian(std::uint64_t value, std::size_t width) {
    Bytes bytes;
    for (std::size_t left = width; left > 0; --left)
        bytes.push_back(static_cast<std::uint8_t>(left > 8 ? 0 : value >> (8 * (left - 1))));
    return bytes;
}

Bytes joined(const std::vector<Bytes>& parts) {
    Bytes whole;
    for (const Bytes& part : parts)
        whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

Bytes longObject(unsigned kind, std::uint64_t count, const Bytes& content) {
    return joined({{static_cast<std::uint8_t>(kind << 4U | 0xFU), 0x13}, bigEndian(count, 8), content});
}

Bytes asciiObject(std::string_view text) {
    return longObject(asciiKind, text.size(), toBytes(text));
}

Bytes uidObject(std::uint64_t uid) {
    return joined({{0x87}, bigEndian(uid, 8)});
}

Bytes HandmadePropertyList::bytes() const {
    std::vector<std::uint64_t> offsets;
    std::uint64_t offset = 8;
    for (const Bytes& object : objects) {
        offsets.push_back(offset);
        offset += object.size();
    }
    return bytesWithOffsets(offsets);
}

Bytes HandmadePropertyList::bytesWithOffsets(const std::vector<std::uint64_t>& offsets) const {
    Bytes file = joined({toBytes("bplist00"), joined(objects)});
    const std::size_t table = file.size();
    for (const std::uint64_t offset : offsets) {
        const Bytes entry = bigEndian(offset, offsetWidth);
        file.insert(file.end(), entry.begin(), entry.end());
    }
    return joined({file, Bytes(6, 0), bigEndian(offsetWidth, 1), bigEndian(referenceWidth, 1),
                   bigEndian(offsets.size(), 8), bigEndian(top, 8), bigEndian(table, 8)});
}

}  // namespace corvane
