#include "platform/property_list/property_list_objects.h"

#include "platform/property_list/binary_property_list_objects.h"
#include "platform/property_list/xml_property_list_objects.h"

namespace corvane {

namespace {

constexpr std::size_t costOfLookingAtOneKey = 16;

}  // namespace

std::optional<PropertyListObjects::Reference> PropertyListObjects::valueForKey(
    const PropertyListDictionaryRange& dictionary, std::string_view wantedKey, ReadBudget& budget) const {
    for (std::size_t index = 0; index < dictionary.count; ++index) {
        if (!budget.spend(costOfLookingAtOneKey))
            return std::nullopt;
        const auto keyText = objectOfType<PropertyListTextRange>(key(dictionary, index));
        if (keyText && text(*keyText, budget) == wantedKey)
            return value(dictionary, index);
    }
    return std::nullopt;
}

std::unique_ptr<const PropertyListObjects> openPropertyList(ByteView file) {
    if (file.size() > maximumPropertyListFileSize)
        return nullptr;
    if (BinaryPropertyListObjects::hasMagic(file))
        return BinaryPropertyListObjects::open(file);
    return XmlPropertyListObjects::open(file);
}

}  // namespace corvane
