#include "platform/property_list/binary_property_list_objects.h"

#include <utf8.h>
#include <algorithm>
#include <bit>
#include <iterator>
#include <limits>

namespace corvane {

namespace {

constexpr std::string_view magic = "bplist00";
constexpr std::size_t trailerSize = 32;
constexpr std::size_t maximumNumberWidth = 8;

constexpr unsigned countFollows = 15;
constexpr std::uint8_t falseMarker = 0x08;
constexpr std::uint8_t trueMarker = 0x09;
constexpr std::uint8_t dateMarker = 0x33;
constexpr std::uint32_t replacementCharacter = 0xFFFD;

enum Kind : unsigned {
    Simple = 0x0,
    Integer = 0x1,
    Real = 0x2,
    Date = 0x3,
    Data = 0x4,
    AsciiText = 0x5,
    Utf16Text = 0x6,
    Uid = 0x8,
    Array = 0xA,
    Dictionary = 0xD
};

bool isLeadSurrogate(std::uint32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool isTrailSurrogate(std::uint32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

}  // namespace

bool BinaryPropertyListObjects::hasMagic(ByteView file) {
    return asText(file).starts_with(magic);
}

std::unique_ptr<BinaryPropertyListObjects> BinaryPropertyListObjects::open(ByteView file) {
    std::unique_ptr<BinaryPropertyListObjects> objects(new BinaryPropertyListObjects(file));
    return objects->readTrailer() ? std::move(objects) : nullptr;
}

bool BinaryPropertyListObjects::readTrailer() {
    if (file_.size() < magic.size() + trailerSize)
        return false;
    // Five unused bytes and a sort version come first.
    const std::size_t trailer = file_.size() - trailerSize;
    offsetWidth_ = file_[trailer + 6];
    referenceWidth_ = file_[trailer + 7];
    const std::uint64_t objectCount = number(trailer + 8, 8);
    topObject_ = number(trailer + 16, 8);
    const std::uint64_t offsetTable = number(trailer + 24, 8);

    if (offsetWidth_ < 1 || offsetWidth_ > maximumNumberWidth)
        return false;
    if (referenceWidth_ < 1 || referenceWidth_ > maximumNumberWidth)
        return false;
    if (offsetTable < magic.size() || offsetTable > trailer)
        return false;
    if (objectCount > (trailer - offsetTable) / offsetWidth_ || topObject_ >= objectCount)
        return false;
    objectCount_ = static_cast<std::size_t>(objectCount);
    offsetTable_ = static_cast<std::size_t>(offsetTable);
    return true;
}

std::uint64_t BinaryPropertyListObjects::number(std::size_t position, std::size_t width) const {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : file_.subspan(position, width))
        value = value << 8 | byte;
    return value;
}

bool BinaryPropertyListObjects::holds(std::size_t position, std::uint64_t count, std::size_t width) const {
    return position <= offsetTable_ && count <= (offsetTable_ - position) / width;
}

std::optional<std::size_t> BinaryPropertyListObjects::offsetOf(Reference reference) const {
    if (reference >= objectCount_)
        return std::nullopt;
    const std::size_t entry = offsetTable_ + static_cast<std::size_t>(reference) * offsetWidth_;
    const std::uint64_t offset = number(entry, offsetWidth_);
    if (offset < magic.size() || offset >= offsetTable_)
        return std::nullopt;
    return static_cast<std::size_t>(offset);
}

std::optional<PropertyListObject> BinaryPropertyListObjects::object(Reference reference) const {
    const std::optional<std::size_t> offset = offsetOf(reference);
    if (!offset)
        return std::nullopt;
    const std::uint8_t marker = file_[*offset];
    const unsigned kind = marker >> 4U;
    const unsigned detail = marker & 0x0FU;
    switch (kind) {
        case Kind::Simple:
            if (marker != falseMarker && marker != trueMarker)
                return std::nullopt;
            return marker == trueMarker;
        case Kind::Integer:
            return integerAt(*offset + 1, detail);
        case Kind::Real:
            return realAt(*offset + 1, detail);
        case Kind::Date:
            if (marker != dateMarker || !holds(*offset + 1, 1, 8))
                return std::nullopt;
            return PropertyListDate{std::bit_cast<double>(number(*offset + 1, 8))};
        case Kind::Uid:
            if (detail + 1 > maximumNumberWidth || !holds(*offset + 1, 1, detail + 1))
                return std::nullopt;
            return PropertyListUid{number(*offset + 1, detail + 1)};
        default:
            return contentsAt(*offset, kind);
    }
}

std::optional<PropertyListObject> BinaryPropertyListObjects::integerAt(std::size_t position,
                                                                       unsigned widthExponent) const {
    if (widthExponent > 4 || !holds(position, 1, std::size_t{1} << widthExponent))
        return std::nullopt;
    // Up to four bytes there is no sign, eight bytes have one, sixteen hold what does not fit those eight.
    if (widthExponent < 3)
        return static_cast<std::int64_t>(number(position, std::size_t{1} << widthExponent));
    if (widthExponent == 3)
        return static_cast<std::int64_t>(number(position, 8));
    const std::uint64_t high = number(position, 8);
    const std::uint64_t low = number(position + 8, 8);
    const auto signedLow = static_cast<std::int64_t>(low);
    if (high == 0)
        return signedLow < 0 ? PropertyListObject(low) : PropertyListObject(signedLow);
    if (high == std::numeric_limits<std::uint64_t>::max() && signedLow < 0)
        return signedLow;
    return std::nullopt;
}

std::optional<PropertyListObject> BinaryPropertyListObjects::realAt(std::size_t position,
                                                                    unsigned widthExponent) const {
    if (widthExponent == 2 && holds(position, 1, 4))
        return double{std::bit_cast<float>(static_cast<std::uint32_t>(number(position, 4)))};
    if (widthExponent == 3 && holds(position, 1, 8))
        return std::bit_cast<double>(number(position, 8));
    return std::nullopt;
}

std::optional<BinaryPropertyListObjects::Extent> BinaryPropertyListObjects::extentAt(
    std::size_t offset, std::size_t width) const {
    std::size_t begin = offset + 1;
    std::uint64_t count = file_[offset] & 0x0FU;
    if (count == countFollows) {
        if (!holds(begin, 1, 1) || file_[begin] >> 4U != Kind::Integer)
            return std::nullopt;
        const unsigned widthExponent = file_[begin] & 0x0FU;
        ++begin;
        if (widthExponent > 3 || !holds(begin, 1, std::size_t{1} << widthExponent))
            return std::nullopt;
        count = number(begin, std::size_t{1} << widthExponent);
        begin += std::size_t{1} << widthExponent;
    }
    if (!holds(begin, count, width))
        return std::nullopt;
    return Extent{begin, static_cast<std::size_t>(count)};
}

std::optional<PropertyListObject> BinaryPropertyListObjects::contentsAt(std::size_t offset,
                                                                        unsigned kind) const {
    std::size_t width = 1;
    if (kind == Kind::Utf16Text)
        width = 2;
    else if (kind == Kind::Array)
        width = referenceWidth_;
    else if (kind == Kind::Dictionary)
        width = 2 * referenceWidth_;

    const std::optional<Extent> extent = extentAt(offset, width);
    if (!extent)
        return std::nullopt;
    switch (kind) {
        case Kind::Data:
            return PropertyListDataRange{extent->begin, extent->count};
        case Kind::AsciiText:
            return PropertyListTextRange{PropertyListTextRange::Encoding::Ascii, extent->begin,
                                         extent->count};
        case Kind::Utf16Text:
            return PropertyListTextRange{PropertyListTextRange::Encoding::Utf16, extent->begin,
                                         2 * extent->count};
        case Kind::Array:
            return PropertyListArrayRange{extent->begin, extent->count};
        case Kind::Dictionary:
            return PropertyListDictionaryRange{extent->begin, extent->count};
        default:
            return std::nullopt;
    }
}

PropertyListObjects::Reference BinaryPropertyListObjects::element(const PropertyListArrayRange& array,
                                                                  std::size_t index) const {
    return number(array.begin + index * referenceWidth_, referenceWidth_);
}

PropertyListObjects::Reference BinaryPropertyListObjects::key(const PropertyListDictionaryRange& dictionary,
                                                              std::size_t index) const {
    return number(dictionary.begin + index * referenceWidth_, referenceWidth_);
}

PropertyListObjects::Reference BinaryPropertyListObjects::value(const PropertyListDictionaryRange& dictionary,
                                                                std::size_t index) const {
    // All keys stand before all values.
    return number(dictionary.begin + (dictionary.count + index) * referenceWidth_, referenceWidth_);
}

std::optional<std::string> BinaryPropertyListObjects::text(const PropertyListTextRange& range,
                                                           ReadBudget& budget) const {
    const ByteView bytes = file_.subspan(range.begin, range.size);
    if (range.encoding == PropertyListTextRange::Encoding::Utf16) {
        // One unit of two bytes becomes three bytes of UTF-8 at most.
        if (!budget.spend(range.size / 2 * 3))
            return std::nullopt;
        return textFromUtf16(bytes);
    }
    if (!budget.spend(range.size))
        return std::nullopt;
    if (std::any_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte > 0x7F; }))
        return std::nullopt;
    return std::string(asText(bytes));
}

std::string BinaryPropertyListObjects::textFromUtf16(ByteView bytes) const {
    const std::size_t unitCount = bytes.size() / 2;
    const auto unit = [bytes](std::size_t index) {
        return static_cast<std::uint32_t>(bytes[2 * index] << 8U | bytes[2 * index + 1]);
    };
    std::string text;
    text.reserve(bytes.size());
    for (std::size_t index = 0; index < unitCount; ++index) {
        std::uint32_t character = unit(index);
        if (isLeadSurrogate(character) && index + 1 < unitCount && isTrailSurrogate(unit(index + 1))) {
            character = 0x10000 + ((character - 0xD800) << 10U) + (unit(index + 1) - 0xDC00);
            ++index;
        } else if (isLeadSurrogate(character) || isTrailSurrogate(character)) {
            character = replacementCharacter;
        }
        utf8::unchecked::append(character, std::back_inserter(text));
    }
    return text;
}

std::optional<Bytes> BinaryPropertyListObjects::data(const PropertyListDataRange& range,
                                                     ReadBudget& budget) const {
    if (!budget.spend(range.size))
        return std::nullopt;
    const ByteView bytes = file_.subspan(range.begin, range.size);
    return Bytes(bytes.begin(), bytes.end());
}

}  // namespace corvane
