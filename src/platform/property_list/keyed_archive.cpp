#include "platform/property_list/keyed_archive.h"

#include <cstdint>
#include <utility>

namespace corvane {

namespace {

constexpr std::string_view nilText = "$null";
constexpr std::string_view archiverName = "NSKeyedArchiver";
constexpr std::int64_t archiveVersion = 100000;

}  // namespace

std::optional<KeyedArchive> KeyedArchive::open(ByteView file) {
    std::unique_ptr<const PropertyListObjects> objects = openPropertyList(file);
    if (!objects)
        return std::nullopt;
    KeyedArchive archive(std::move(objects));
    if (!archive.readTop())
        return std::nullopt;
    return archive;
}

bool KeyedArchive::isOfKnownForm(const PropertyListDictionaryRange& archive) {
    const auto archiver = valueForKey<PropertyListTextRange>(archive, "$archiver");
    return archiver && objects_->text(*archiver, budget_) == archiverName &&
           valueForKey<std::int64_t>(archive, "$version") == archiveVersion;
}

bool KeyedArchive::readTop() {
    const auto archive = objects_->objectOfType<PropertyListDictionaryRange>(objects_->topObject());
    if (!archive || !isOfKnownForm(*archive))
        return false;
    const auto table = valueForKey<PropertyListArrayRange>(*archive, "$objects");
    const auto top = valueForKey<PropertyListDictionaryRange>(*archive, "$top");
    if (!table || !top)
        return false;
    const auto root = valueForKey<PropertyListUid>(*top, "root");
    if (!root)
        return false;
    table_ = *table;
    root_ = *root;
    return true;
}

template <typename T>
std::optional<T> KeyedArchive::valueForKey(const PropertyListDictionaryRange& dictionary,
                                           std::string_view key) {
    const auto reference = objects_->valueForKey(dictionary, key, budget_);
    return reference ? objects_->objectOfType<T>(*reference) : std::nullopt;
}

std::optional<PropertyListObjects::Reference> KeyedArchive::referenceTo(PropertyListUid uid) const {
    if (uid.index >= table_.count)
        return std::nullopt;
    return objects_->element(table_, static_cast<std::size_t>(uid.index));
}

std::optional<std::string> KeyedArchive::classNameOf(const PropertyListDictionaryRange& contents) {
    const auto uid = valueForKey<PropertyListUid>(contents, "$class");
    const auto reference = uid ? referenceTo(*uid) : std::nullopt;
    if (!reference)
        return std::nullopt;
    const auto classDictionary = objects_->objectOfType<PropertyListDictionaryRange>(*reference);
    if (!classDictionary)
        return std::nullopt;
    const auto name = valueForKey<PropertyListTextRange>(*classDictionary, "$classname");
    return name ? objects_->text(*name, budget_) : std::nullopt;
}

std::optional<KeyedArchive::Object> KeyedArchive::objectAt(PropertyListUid uid) {
    const auto reference = referenceTo(uid);
    if (!reference)
        return std::nullopt;
    const auto contents = objects_->objectOfType<PropertyListDictionaryRange>(*reference);
    if (!contents)
        return std::nullopt;
    std::optional<std::string> className = classNameOf(*contents);
    if (!className)
        return std::nullopt;
    return Object{std::move(*className), *contents};
}

std::optional<PropertyListUid> KeyedArchive::referenceForKey(const Object& object, std::string_view key) {
    return valueForKey<PropertyListUid>(object.contents, key);
}

std::optional<std::vector<PropertyListUid>> KeyedArchive::arrayAt(PropertyListUid uid) {
    const std::optional<Object> array = objectAt(uid);
    if (!array || (array->className != "NSArray" && array->className != "NSMutableArray"))
        return std::nullopt;
    const auto range = valueForKey<PropertyListArrayRange>(array->contents, "NS.objects");
    if (!range || !budget_.spend(range->count * sizeof(PropertyListUid)))
        return std::nullopt;
    std::vector<PropertyListUid> elements;
    elements.reserve(range->count);
    for (std::size_t index = 0; index < range->count; ++index) {
        const auto element = objects_->objectOfType<PropertyListUid>(objects_->element(*range, index));
        if (!element)
            return std::nullopt;
        elements.push_back(*element);
    }
    return elements;
}

std::optional<std::string> KeyedArchive::stringAt(PropertyListUid uid) {
    const auto reference = referenceTo(uid);
    if (!reference)
        return std::nullopt;
    if (const auto plain = objects_->objectOfType<PropertyListTextRange>(*reference)) {
        std::optional<std::string> text = objects_->text(*plain, budget_);
        return text == nilText ? std::nullopt : text;
    }
    const std::optional<Object> string = objectAt(uid);
    if (!string || (string->className != "NSString" && string->className != "NSMutableString"))
        return std::nullopt;
    const auto content = valueForKey<PropertyListTextRange>(string->contents, "NS.string");
    return content ? objects_->text(*content, budget_) : std::nullopt;
}

}  // namespace corvane
