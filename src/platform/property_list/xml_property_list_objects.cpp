#include "platform/property_list/xml_property_list_objects.h"

#include <utf8.h>

#include "platform/property_list/xml_property_list_scalars.h"

namespace corvane {

namespace {

/// No number or date is longer. Such objects are decoded each time they are looked at.
constexpr std::size_t longestScalar = 512;

/// Comments and CDATA sections are allowed within numbers and data as well.
template <typename Decode>
auto decoded(std::string_view content, Decode decode) -> decltype(decode(content)) {
    if (content.find_first_of("<&") == std::string_view::npos)
        return decode(content);
    const std::optional<std::string> text = xmlText(content);
    if (!text)
        return std::nullopt;
    return decode(*text);
}

template <typename Value>
std::optional<PropertyListObject> asObject(const std::optional<Value>& value) {
    return value ? std::optional<PropertyListObject>(*value) : std::nullopt;
}

std::optional<PropertyListObject> uidFrom(std::string_view content) {
    const std::optional<PropertyListObject> number = xmlInteger(content);
    const std::int64_t* index = number ? std::get_if<std::int64_t>(&*number) : nullptr;
    if (index == nullptr)
        return std::nullopt;
    return PropertyListUid{static_cast<std::uint64_t>(*index)};
}

}  // namespace

std::unique_ptr<XmlPropertyListObjects> XmlPropertyListObjects::open(ByteView file) {
    const std::string_view text = asText(file);
    // Looking for markup first spares other files the rest.
    if (text.find('<') == std::string_view::npos || !utf8::is_valid(text.begin(), text.end()))
        return nullptr;
    std::optional<XmlPropertyListNodes> content = parseXmlPropertyList(text);
    if (!content)
        return nullptr;
    return std::unique_ptr<XmlPropertyListObjects>(new XmlPropertyListObjects(text, std::move(*content)));
}

std::optional<PropertyListObject> XmlPropertyListObjects::object(Reference reference) const {
    if (reference >= content_.nodes.size())
        return std::nullopt;
    const XmlPropertyListNode& node = content_.nodes[static_cast<std::size_t>(reference)];
    switch (node.element) {
        case XmlPropertyListElement::Dictionary:
            return PropertyListDictionaryRange{node.begin, node.size / 2};
        case XmlPropertyListElement::Array:
            return PropertyListArrayRange{node.begin, node.size};
        case XmlPropertyListElement::Key:
        case XmlPropertyListElement::String:
            return PropertyListTextRange{PropertyListTextRange::Encoding::Xml, node.begin, node.size};
        case XmlPropertyListElement::Data:
            return PropertyListDataRange{node.begin, node.size};
        default:
            break;
    }
    if (node.size > longestScalar)
        return std::nullopt;
    const std::string_view content = text_.substr(node.begin, node.size);
    switch (node.element) {
        case XmlPropertyListElement::Integer:
            return decoded(content, xmlInteger);
        case XmlPropertyListElement::Real:
            return asObject(decoded(content, xmlReal));
        case XmlPropertyListElement::Date:
            return asObject(decoded(content, xmlDate));
        case XmlPropertyListElement::Uid:
            return uidFrom(content);
        default:
            break;
    }
    if (!content.empty())
        return std::nullopt;
    return node.element == XmlPropertyListElement::TrueValue;
}

PropertyListObjects::Reference XmlPropertyListObjects::element(const PropertyListArrayRange& array,
                                                               std::size_t index) const {
    return content_.children[array.begin + index];
}

PropertyListObjects::Reference XmlPropertyListObjects::key(const PropertyListDictionaryRange& dictionary,
                                                           std::size_t index) const {
    return content_.children[dictionary.begin + 2 * index];
}

PropertyListObjects::Reference XmlPropertyListObjects::value(const PropertyListDictionaryRange& dictionary,
                                                             std::size_t index) const {
    return content_.children[dictionary.begin + 2 * index + 1];
}

std::optional<std::string> XmlPropertyListObjects::text(const PropertyListTextRange& range,
                                                        ReadBudget& budget) const {
    if (!budget.spend(range.size))
        return std::nullopt;
    return xmlText(text_.substr(range.begin, range.size));
}

std::optional<Bytes> XmlPropertyListObjects::data(const PropertyListDataRange& range,
                                                  ReadBudget& budget) const {
    if (!budget.spend(range.size))
        return std::nullopt;
    return decoded(text_.substr(range.begin, range.size), xmlData);
}

}  // namespace corvane
