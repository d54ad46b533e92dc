#pragma once

#include <memory>
#include <optional>

#include "platform/property_list/property_list_objects.h"

namespace corvane {

/// The objects of a binary property list: a table of offsets at the file's end leads to each of them.
class BinaryPropertyListObjects final : public PropertyListObjects {
  public:
    static bool hasMagic(ByteView file);

    /// Null when the trailer or the table of offsets does not fit the file.
    static std::unique_ptr<BinaryPropertyListObjects> open(ByteView file);

    Reference topObject() const override { return topObject_; }
    std::optional<PropertyListObject> object(Reference reference) const override;
    Reference element(const PropertyListArrayRange& array, std::size_t index) const override;
    Reference key(const PropertyListDictionaryRange& dictionary, std::size_t index) const override;
    Reference value(const PropertyListDictionaryRange& dictionary, std::size_t index) const override;
    std::optional<std::string> text(const PropertyListTextRange& range, ReadBudget& budget) const override;
    std::optional<Bytes> data(const PropertyListDataRange& range, ReadBudget& budget) const override;

  private:
    /// Where the contents of an object begin, and how many there are.
    struct Extent {
        std::size_t begin;
        std::size_t count;
    };

    explicit BinaryPropertyListObjects(ByteView file) : file_(file) {}

    bool readTrailer();
    std::optional<std::size_t> offsetOf(Reference reference) const;
    std::uint64_t number(std::size_t position, std::size_t width) const;
    bool holds(std::size_t position, std::uint64_t count, std::size_t width) const;
    /// The count in the marker, or behind it when it is large, for contents of `width` bytes each.
    std::optional<Extent> extentAt(std::size_t offset, std::size_t width) const;
    std::optional<PropertyListObject> integerAt(std::size_t position, unsigned widthExponent) const;
    std::optional<PropertyListObject> realAt(std::size_t position, unsigned widthExponent) const;
    std::optional<PropertyListObject> contentsAt(std::size_t offset, unsigned kind) const;
    std::string textFromUtf16(ByteView bytes) const;

    ByteView file_;
    Reference topObject_ = 0;
    std::size_t objectCount_ = 0;
    std::size_t offsetTable_ = 0;  ///< also the end of the objects
    std::size_t offsetWidth_ = 0;
    std::size_t referenceWidth_ = 0;
};

}  // namespace corvane
