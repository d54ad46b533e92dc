#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace corvane {

enum class XmlPropertyListElement : std::uint8_t {
    Dictionary,
    Array,
    Key,
    String,
    Integer,
    Real,
    Date,
    Data,
    TrueValue,
    FalseValue,
    Uid  ///< a dictionary whose only key is `CF$UID`; its range is that of the integer
};

/// One element. Its range is the content between the tags, of a container a part of `children`.
struct XmlPropertyListNode {
    XmlPropertyListElement element;
    std::uint32_t begin;
    std::uint32_t size;
};

/// All elements of an XML property list, contained ones before their container, so that the last is the top.
struct XmlPropertyListNodes {
    std::vector<XmlPropertyListNode> nodes;
    std::vector<std::uint32_t> children;  ///< indexes of nodes; of a dictionary key, value, key, value ...
};

/// A property list of more elements is not read.
inline constexpr std::size_t maximumXmlPropertyListElements = std::size_t{1} << 19;

/// The elements of an XML property list; scalar contents are kept as they stand. Absent when the text is not
/// well-formed, has an element that property lists do not have, or too many. Document types are passed over;
/// nothing outside the text is ever read. The text is valid UTF-8 and no larger than
/// maximumPropertyListFileSize.
std::optional<XmlPropertyListNodes> parseXmlPropertyList(std::string_view text);

}  // namespace corvane
