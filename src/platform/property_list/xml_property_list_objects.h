#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/property_list/property_list_objects.h"
#include "platform/property_list/xml_property_list_parser.h"

namespace corvane {

/// The objects of an XML property list. Its structure is parsed at once, contents are decoded on demand.
class XmlPropertyListObjects final : public PropertyListObjects {
  public:
    /// Null when the file is not a well-formed XML property list in UTF-8.
    static std::unique_ptr<XmlPropertyListObjects> open(ByteView file);

    Reference topObject() const override { return content_.nodes.size() - 1; }
    std::optional<PropertyListObject> object(Reference reference) const override;
    Reference element(const PropertyListArrayRange& array, std::size_t index) const override;
    Reference key(const PropertyListDictionaryRange& dictionary, std::size_t index) const override;
    Reference value(const PropertyListDictionaryRange& dictionary, std::size_t index) const override;
    std::optional<std::string> text(const PropertyListTextRange& range, ReadBudget& budget) const override;
    std::optional<Bytes> data(const PropertyListDataRange& range, ReadBudget& budget) const override;

  private:
    XmlPropertyListObjects(std::string_view text, XmlPropertyListNodes content)
        : text_(text), content_(std::move(content)) {}

    std::string_view text_;
    XmlPropertyListNodes content_;
};

}  // namespace corvane
