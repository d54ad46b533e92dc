#include "platform/property_list/binary_property_list_writer.h"

#include <utf8.h>
#include <algorithm>
#include <bit>
#include <cstddef>
#include <iterator>
#include <limits>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace corvane {

namespace {

constexpr std::string_view magic = "bplist00";
constexpr std::uint64_t largestCountInMarker = 14;

/// 1, 2, 4 or 8 bytes, given as 0 to 3.
unsigned smallestWidthExponent(std::uint64_t value) {
    if (value <= std::numeric_limits<std::uint8_t>::max())
        return 0;
    if (value <= std::numeric_limits<std::uint16_t>::max())
        return 1;
    return value <= std::numeric_limits<std::uint32_t>::max() ? 2 : 3;
}

std::size_t smallestWidth(std::uint64_t value) {
    return std::size_t{1} << smallestWidthExponent(value);
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char character) { return (character & 0x80) == 0; });
}

std::u16string utf16(const std::string& text) {
    std::string valid;
    utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid));
    std::u16string units;
    utf8::unchecked::utf8to16(valid.begin(), valid.end(), std::back_inserter(units));
    return units;
}

class Writer {
  public:
    Bytes write(const PropertyListValue& top) {
        add(top);
        referenceWidth_ = smallestWidth(objects_.size() - 1);
        append(magic);
        std::vector<std::size_t> offsets;
        offsets.reserve(objects_.size());
        for (const Object& object : objects_) {
            offsets.push_back(bytes_.size());
            writeObject(object);
        }
        writeTable(offsets);
        return std::move(bytes_);
    }

  private:
    struct Object {
        std::variant<const PropertyListValue*, const std::string*> content;
        std::vector<std::size_t> references;  ///< of an array its elements, of a dictionary keys, then values
    };

    std::size_t add(const PropertyListValue& value) {
        if (const auto* text = value.get<std::string>())
            return addText(*text);
        const std::size_t index = objects_.size();
        objects_.push_back({&value, {}});
        if (const auto* array = value.get<PropertyListArray>())
            addElements(index, *array);
        else if (const auto* dictionary = value.get<PropertyListDictionary>())
            addPairs(index, *dictionary);
        return index;
    }

    std::size_t addText(const std::string& text) {
        const auto [entry, isNew] = texts_.try_emplace(text, objects_.size());
        if (isNew)
            objects_.push_back({&text, {}});
        return entry->second;
    }

    void addElements(std::size_t index, const PropertyListArray& array) {
        std::vector<std::size_t> references;
        references.reserve(array.size());
        for (const PropertyListValue& element : array)
            references.push_back(add(element));
        objects_[index].references = std::move(references);
    }

    void addPairs(std::size_t index, const PropertyListDictionary& dictionary) {
        std::vector<std::size_t> references;
        references.reserve(2 * dictionary.size());
        for (const auto& pair : dictionary)
            references.push_back(addText(pair.first));
        for (const auto& pair : dictionary)
            references.push_back(add(pair.second));
        objects_[index].references = std::move(references);
    }

    void append(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }

    void appendNumber(std::uint64_t value, std::size_t width) {
        for (std::size_t left = width; left > 0; --left)
            bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * (left - 1))));
    }

    void appendMarker(unsigned kind, std::size_t count) {
        if (count <= largestCountInMarker) {
            bytes_.push_back(static_cast<std::uint8_t>(kind << 4U | count));
            return;
        }
        bytes_.push_back(static_cast<std::uint8_t>(kind << 4U | 0x0FU));
        writeUnsigned(count);
    }

    void writeUnsigned(std::uint64_t value) {
        bytes_.push_back(static_cast<std::uint8_t>(0x10U | smallestWidthExponent(value)));
        appendNumber(value, smallestWidth(value));
    }

    void writeObject(const Object& object) {
        if (const auto* text = std::get_if<const std::string*>(&object.content)) {
            writeText(**text);
            return;
        }
        const PropertyListValue& value = *std::get<const PropertyListValue*>(object.content);
        std::visit([this](const auto& content) { writeScalar(content); }, value.content());
        if (value.get<PropertyListDictionary>())
            appendMarker(0xD, object.references.size() / 2);
        else if (value.get<PropertyListArray>())
            appendMarker(0xA, object.references.size());
        for (const std::size_t reference : object.references)
            appendNumber(reference, referenceWidth_);
    }

    void writeScalar(bool value) { bytes_.push_back(value ? 0x09 : 0x08); }

    void writeScalar(std::int64_t value) {
        if (value >= 0) {
            writeUnsigned(static_cast<std::uint64_t>(value));
            return;
        }
        bytes_.push_back(0x13);
        appendNumber(static_cast<std::uint64_t>(value), 8);
    }

    void writeScalar(std::uint64_t value) {
        if (value <= std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
            writeUnsigned(value);
            return;
        }
        // Eight bytes would read as a negative number.
        bytes_.push_back(0x14);
        appendNumber(0, 8);
        appendNumber(value, 8);
    }

    void writeScalar(double value) {
        bytes_.push_back(0x23);
        appendNumber(std::bit_cast<std::uint64_t>(value), 8);
    }

    void writeScalar(const PropertyListDate& date) {
        bytes_.push_back(0x33);
        appendNumber(std::bit_cast<std::uint64_t>(date.secondsSince2001), 8);
    }

    void writeScalar(const Bytes& data) {
        appendMarker(0x4, data.size());
        bytes_.insert(bytes_.end(), data.begin(), data.end());
    }

    void writeScalar(const PropertyListUid& uid) {
        bytes_.push_back(static_cast<std::uint8_t>(0x80U | (smallestWidth(uid.index) - 1)));
        appendNumber(uid.index, smallestWidth(uid.index));
    }

    // Texts are objects of their own, containers are written from their references.
    void writeScalar(const std::string&) {}
    void writeScalar(const PropertyListArray&) {}
    void writeScalar(const PropertyListDictionary&) {}

    void writeText(const std::string& text) {
        if (isAscii(text)) {
            appendMarker(0x5, text.size());
            append(text);
            return;
        }
        const std::u16string units = utf16(text);
        appendMarker(0x6, units.size());
        for (const char16_t unit : units)
            appendNumber(unit, 2);
    }

    void writeTable(const std::vector<std::size_t>& offsets) {
        const std::size_t table = bytes_.size();
        const std::size_t offsetWidth = smallestWidth(table);
        for (const std::size_t offset : offsets)
            appendNumber(offset, offsetWidth);
        // The trailer: five unused bytes, the sort version, widths, counts, and where to begin.
        appendNumber(0, 6);
        appendNumber(offsetWidth, 1);
        appendNumber(referenceWidth_, 1);
        appendNumber(offsets.size(), 8);
        appendNumber(0, 8);
        appendNumber(table, 8);
    }

    std::vector<Object> objects_;
    std::unordered_map<std::string_view, std::size_t> texts_;
    std::size_t referenceWidth_ = 1;
    Bytes bytes_;
};

}  // namespace

Bytes writeBinaryPropertyList(const PropertyListValue& value) {
    return Writer().write(value);
}

}  // namespace corvane
