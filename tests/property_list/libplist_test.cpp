#include <gtest/gtest.h>
#include <plist/plist.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "platform/property_list/binary_property_list_writer.h"
#include "platform/property_list/property_list_reader.h"
#include "property_list/sample_property_list.h"

namespace corvane {
namespace {

struct FreePlist {
    void operator()(plist_t node) const { plist_free(node); }
};
using Plist = std::unique_ptr<void, FreePlist>;

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};

constexpr double microsecondsPerSecond = 1e6;

/// What libplist makes of a file, or of a node, in our own types.
std::optional<PropertyListValue> fromLibplist(plist_t node);

PropertyListValue textFrom(const char* text) {
    return std::string(text);
}

PropertyListValue arrayFrom(plist_t node) {
    PropertyListArray array;
    for (std::uint32_t index = 0; index < plist_array_get_size(node); ++index)
        array.push_back(fromLibplist(plist_array_get_item(node, index)).value());
    return array;
}

PropertyListValue dictionaryFrom(plist_t node) {
    PropertyListDictionary dictionary;
    plist_dict_iter iterator = nullptr;
    plist_dict_new_iter(node, &iterator);
    const std::unique_ptr<void, FreeMemory> owner(iterator);
    while (true) {
        char* key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(node, iterator, &key, &value);
        if (value == nullptr)
            return dictionary;
        const std::unique_ptr<char, FreeMemory> keyOwner(key);
        dictionary.emplace(key, fromLibplist(value).value());
    }
}

std::optional<PropertyListValue> fromLibplist(plist_t node) {
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN: {
            std::uint8_t value = 0;
            plist_get_bool_val(node, &value);
            return PropertyListValue(value != 0);
        }
        case PLIST_UINT: {
            // It does not tell signed numbers from unsigned ones.
            std::uint64_t value = 0;
            plist_get_uint_val(node, &value);
            return PropertyListValue(static_cast<std::int64_t>(value));
        }
        case PLIST_REAL: {
            double value = 0;
            plist_get_real_val(node, &value);
            return PropertyListValue(value);
        }
        case PLIST_DATE: {
            std::int32_t seconds = 0;
            std::int32_t microseconds = 0;
            plist_get_date_val(node, &seconds, &microseconds);
            return PropertyListValue(PropertyListDate{seconds + microseconds / microsecondsPerSecond});
        }
        case PLIST_DATA: {
            std::uint64_t length = 0;
            const char* data = plist_get_data_ptr(node, &length);
            return PropertyListValue(Bytes(data, data + length));
        }
        case PLIST_STRING:
            return textFrom(plist_get_string_ptr(node, nullptr));
        case PLIST_UID: {
            std::uint64_t value = 0;
            plist_get_uid_val(node, &value);
            return PropertyListValue(PropertyListUid{value});
        }
        case PLIST_ARRAY:
            return arrayFrom(node);
        case PLIST_DICT:
            return dictionaryFrom(node);
        default:
            return std::nullopt;
    }
}

Plist readWithLibplist(const Bytes& file) {
    plist_t root = nullptr;
    plist_from_memory(reinterpret_cast<const char*>(file.data()), static_cast<std::uint32_t>(file.size()),
                      &root);
    return Plist(root);
}

/// The sample without what libplist 2.2 cannot express: unsigned numbers, U+0000 in texts.
PropertyListDictionary sampleForLibplist() {
    PropertyListDictionary sample = samplePropertyList();
    sample.erase("nul");
    PropertyListArray integers;
    for (const PropertyListValue& integer : *sample.at("integers").get<PropertyListArray>()) {
        if (integer.get<std::int64_t>() != nullptr)
            integers.push_back(integer);
    }
    sample.at("integers") = integers;
    return sample;
}

TEST(Libplist, ReadsWhatWeWrite) {
    const Plist read = readWithLibplist(writeBinaryPropertyList(sampleForLibplist()));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(fromLibplist(read.get()), PropertyListValue(sampleForLibplist()));
}

TEST(Libplist, WritesBinaryFilesThatWeRead) {
    const Plist sample = readWithLibplist(writeBinaryPropertyList(sampleForLibplist()));
    char* binary = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(sample.get(), &binary, &length);
    const std::unique_ptr<char, FreeMemory> owner(binary);
    ASSERT_NE(binary, nullptr);
    EXPECT_EQ(readPropertyList(asBytes({binary, length})), PropertyListValue(sampleForLibplist()));
}

TEST(Libplist, WritesXmlFilesThatWeReadUidsIncluded) {
    PropertyListDictionary expected = sampleForLibplist();
    // It writes reals with six digits after the point.
    expected.at("reals") = PropertyListArray{0.0, -0.5, 2.25};
    const Plist sample = readWithLibplist(writeBinaryPropertyList(expected));
    char* xml = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(sample.get(), &xml, &length);
    const std::unique_ptr<char, FreeMemory> owner(xml);
    ASSERT_NE(xml, nullptr);
    EXPECT_EQ(readPropertyList(asBytes({xml, length})), PropertyListValue(expected))
        << std::string(xml, length);
}

}  // namespace
}  // namespace corvane
