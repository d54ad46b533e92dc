#include "platform/property_list/property_list_reader.h"

#include <memory>
#include <utility>

#include "platform/property_list/property_list_objects.h"

namespace corvane {

namespace {

// What the standard containers take beyond the contents, generously.
constexpr std::size_t costOfAllocation = 32;
constexpr std::size_t costOfElement = sizeof(PropertyListValue);
constexpr std::size_t costOfPair = sizeof(PropertyListDictionary::value_type) + 2 * costOfAllocation;

/// Recursion ends at maximumPropertyListDepth, whatever the file says.
class TreeReader {
  public:
    TreeReader(const PropertyListObjects& objects, ReadBudget& budget) : objects_(objects), budget_(budget) {}

    std::optional<PropertyListValue> read(PropertyListObjects::Reference reference, std::size_t depth) {
        const std::optional<PropertyListObject> object = objects_.object(reference);
        if (!object || depth > maximumPropertyListDepth)
            return std::nullopt;
        return std::visit([this, depth](const auto& content) { return value(content, depth); }, *object);
    }

  private:
    template <typename Scalar>
    std::optional<PropertyListValue> value(const Scalar& scalar, std::size_t /*depth*/) {
        return PropertyListValue(scalar);
    }

    std::optional<PropertyListValue> value(const PropertyListTextRange& range, std::size_t /*depth*/) {
        if (!budget_.spend(costOfAllocation))
            return std::nullopt;
        return objects_.text(range, budget_);
    }

    std::optional<PropertyListValue> value(const PropertyListDataRange& range, std::size_t /*depth*/) {
        if (!budget_.spend(costOfAllocation))
            return std::nullopt;
        return objects_.data(range, budget_);
    }

    std::optional<PropertyListValue> value(const PropertyListArrayRange& range, std::size_t depth) {
        if (!budget_.spend(costOfAllocation + range.count * costOfElement))
            return std::nullopt;
        PropertyListArray array;
        array.reserve(range.count);
        for (std::size_t index = 0; index < range.count; ++index) {
            std::optional<PropertyListValue> element = read(objects_.element(range, index), depth + 1);
            if (!element)
                return std::nullopt;
            array.push_back(std::move(*element));
        }
        return PropertyListValue(std::move(array));
    }

    std::optional<PropertyListValue> value(const PropertyListDictionaryRange& range, std::size_t depth) {
        if (!budget_.spend(costOfAllocation + range.count * costOfPair))
            return std::nullopt;
        PropertyListDictionary dictionary;
        for (std::size_t index = 0; index < range.count; ++index) {
            const auto keyText = objects_.objectOfType<PropertyListTextRange>(objects_.key(range, index));
            if (!keyText)
                return std::nullopt;
            std::optional<std::string> key = objects_.text(*keyText, budget_);
            std::optional<PropertyListValue> content = read(objects_.value(range, index), depth + 1);
            if (!key || !content)
                return std::nullopt;
            dictionary.emplace(std::move(*key), std::move(*content));
        }
        return PropertyListValue(std::move(dictionary));
    }

    const PropertyListObjects& objects_;
    ReadBudget& budget_;
};

}  // namespace

std::optional<PropertyListValue> readPropertyList(ByteView file) {
    const std::unique_ptr<const PropertyListObjects> objects = openPropertyList(file);
    if (!objects)
        return std::nullopt;
    ReadBudget budget(maximumPropertyListContent);
    return TreeReader(*objects, budget).read(objects->topObject(), 1);
}

}  // namespace corvane
