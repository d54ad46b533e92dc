#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/bytes.h"
#include "platform/property_list/property_list_value.h"
#include "platform/property_list/read_budget.h"

namespace corvane {

/// A file of more bytes is not read. Accounts and report keys of a lifetime need less than a tenth of it.
inline constexpr std::size_t maximumPropertyListFileSize = std::size_t{8} << 20;

/// Where the contents of an object stand; they are decoded only when asked for. A range is good only for the
/// objects that handed it out.
struct PropertyListTextRange {
    enum class Encoding : std::uint8_t { Ascii, Utf16, Xml };
    Encoding encoding;
    std::size_t begin;
    std::size_t size;  ///< in bytes
};

struct PropertyListDataRange {
    std::size_t begin;
    std::size_t size;  ///< in bytes, as they stand in the file
};

struct PropertyListArrayRange {
    std::size_t begin;
    std::size_t count;
};

struct PropertyListDictionaryRange {
    std::size_t begin;
    std::size_t count;  ///< of pairs
};

/// One object without what it contains.
using PropertyListObject = std::variant<bool, std::int64_t, std::uint64_t, double, PropertyListDate,
                                        PropertyListUid, PropertyListTextRange, PropertyListDataRange,
                                        PropertyListArrayRange, PropertyListDictionaryRange>;

/// The objects of a property list, decoded one by one as they are asked for. Nothing here recurses, and no
/// count, reference or offset of the file is believed before it is checked. The file's bytes must outlive it.
class PropertyListObjects {
  public:
    /// Names an object. Comes out of the file: it may name none.
    using Reference = std::uint64_t;

    virtual ~PropertyListObjects() = default;

    virtual Reference topObject() const = 0;

    /// Absent when there is no such object, it is malformed, or of a kind that property lists do not have.
    virtual std::optional<PropertyListObject> object(Reference reference) const = 0;

    /// `index` is less than the range's count.
    virtual Reference element(const PropertyListArrayRange& array, std::size_t index) const = 0;
    virtual Reference key(const PropertyListDictionaryRange& dictionary, std::size_t index) const = 0;
    virtual Reference value(const PropertyListDictionaryRange& dictionary, std::size_t index) const = 0;

    /// As UTF-8; lone surrogates become U+FFFD. Absent when malformed or beyond the budget.
    virtual std::optional<std::string> text(const PropertyListTextRange& range, ReadBudget& budget) const = 0;
    virtual std::optional<Bytes> data(const PropertyListDataRange& range, ReadBudget& budget) const = 0;

    /// The object of type T under that name, else absent.
    template <typename T>
    std::optional<T> objectOfType(Reference reference) const {
        const std::optional<PropertyListObject> found = object(reference);
        const T* typed = found ? std::get_if<T>(&*found) : nullptr;
        return typed ? std::optional<T>(*typed) : std::nullopt;
    }

    /// What a dictionary holds under a key; of a key that occurs twice, the first. Absent when the key is
    /// missing or the budget is spent.
    std::optional<Reference> valueForKey(const PropertyListDictionaryRange& dictionary, std::string_view key,
                                         ReadBudget& budget) const;
};

/// Takes up a property list, binary ("bplist00") or XML in UTF-8. Null when the file is neither, is
/// inconsistent as a whole or too large.
std::unique_ptr<const PropertyListObjects> openPropertyList(ByteView file);

}  // namespace corvane
