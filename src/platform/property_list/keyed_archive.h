#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/bytes.h"
#include "platform/property_list/property_list_objects.h"

namespace corvane {

/// The content of a keyed archive at most, in bytes with what its objects take in memory.
inline constexpr std::size_t maximumKeyedArchiveContent = std::size_t{16} << 20;

/// Reads the archives that the Mac's `NSKeyedArchiver` writes: a property list (binary, or XML) with a flat
/// table of objects that refer to each other by UID. An object is looked at only when it is asked for, so
/// loops and deep nesting in the table do no harm.
class KeyedArchive {
  public:
    /// An object with keys of its own, as opposed to a plain text or number.
    struct Object {
        std::string className;
        PropertyListDictionaryRange contents;
    };

    /// Absent when the file is no property list, names another archiver or version, or has no table or no
    /// root. The bytes must outlive the archive.
    static std::optional<KeyedArchive> open(ByteView file);

    PropertyListUid root() const { return root_; }

    /// Absent for a UID that leads nowhere, a plain value, and an object without a class name.
    std::optional<Object> objectAt(PropertyListUid uid);

    /// What an object refers to under a key. Absent when the key is missing or its value is not a UID.
    std::optional<PropertyListUid> referenceForKey(const Object& object, std::string_view key);

    /// The elements of an `NSArray` or `NSMutableArray`. Absent for anything else, and when one is not a UID.
    std::optional<std::vector<PropertyListUid>> arrayAt(PropertyListUid uid);

    /// A text, plain or as an `NSString` or `NSMutableString`. Absent for anything else, nil included.
    std::optional<std::string> stringAt(PropertyListUid uid);

    /// True once the archive has asked for more than maximumKeyedArchiveContent. Absent answers may then be
    /// due to that, so that nothing that was read is to be used.
    bool isExhausted() const { return budget_.isExhausted(); }

    /// To be called for what the caller makes out of the archive. False when the archive is exhausted.
    [[nodiscard]] bool spend(std::size_t bytes) { return budget_.spend(bytes); }

  private:
    explicit KeyedArchive(std::unique_ptr<const PropertyListObjects> objects)
        : objects_(std::move(objects)), budget_(maximumKeyedArchiveContent) {}

    bool readTop();
    bool isOfKnownForm(const PropertyListDictionaryRange& archive);
    std::optional<PropertyListObjects::Reference> referenceTo(PropertyListUid uid) const;
    template <typename T>
    std::optional<T> valueForKey(const PropertyListDictionaryRange& dictionary, std::string_view key);
    std::optional<std::string> classNameOf(const PropertyListDictionaryRange& contents);

    std::unique_ptr<const PropertyListObjects> objects_;
    ReadBudget budget_;
    PropertyListArrayRange table_{};
    PropertyListUid root_;
};

}  // namespace corvane
