#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "core/itunes_account.h"
#include "platform/property_list/binary_property_list_writer.h"
#include "platform/property_list/property_list_value.h"

namespace corvane {

inline PropertyListUid uid(std::uint64_t index) {
    return {index};
}

/// An archive whose parts a test can change one by one. It starts as one record without e-mail and password,
/// in the layout of the Mac.
struct AccountArchiveBuilder {
    PropertyListArray objects = {
        "$null",
        PropertyListDictionary{{"NS.objects", PropertyListArray{uid(2)}}, {"$class", uid(6)}},
        PropertyListDictionary{{"vendorID", uid(3)},
                               {"email", uid(0)},
                               {"password", uid(0)},
                               {"name", uid(4)},
                               {"$class", uid(5)}},
        "4711",
        "Demo",
        PropertyListDictionary{{"$classname", "Corvane.ITunesAccount"},
                               {"$classes", PropertyListArray{"Corvane.ITunesAccount", "NSObject"}}},
        PropertyListDictionary{{"$classname", "NSArray"},
                               {"$classes", PropertyListArray{"NSArray", "NSObject"}}},
    };
    PropertyListDictionary top = {{"root", uid(1)}};
    PropertyListDictionary others = {{"$archiver", "NSKeyedArchiver"}, {"$version", std::int64_t{100000}}};

    static constexpr std::size_t list = 1;
    static constexpr std::size_t record = 2;
    static constexpr std::size_t recordClass = 5;
    static constexpr std::size_t listClass = 6;

    /// Adds an object and tells its UID.
    PropertyListUid add(PropertyListValue object) {
        objects.push_back(std::move(object));
        return uid(objects.size() - 1);
    }

    /// The dictionary at that place of the table.
    PropertyListDictionary& at(std::size_t index) { return *objects.at(index).get<PropertyListDictionary>(); }

    void setField(const char* key, PropertyListValue value) {
        at(record).insert_or_assign(key, std::move(value));
    }

    void setElements(PropertyListValue elements) {
        at(list).insert_or_assign("NS.objects", std::move(elements));
    }

    PropertyListDictionary propertyList() const {
        PropertyListDictionary archive = others;
        archive.emplace("$objects", objects);
        archive.emplace("$top", top);
        return archive;
    }

    Bytes bytes() const { return writeBinaryPropertyList(propertyList()); }
};

}  // namespace corvane
