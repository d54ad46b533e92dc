#include "property_list/sample_property_list.h"

#include <cstdint>
#include <limits>
#include <string>

namespace corvane {

PropertyListDictionary sampleXmlPropertyList() {
    PropertyListArray many;
    for (std::int64_t number = 0; number < 300; ++number)
        many.emplace_back(number);
    Bytes everyByte;
    for (unsigned byte = 0; byte < 256; ++byte)
        everyByte.push_back(static_cast<std::uint8_t>(byte));
    return {
        {"yes", true},
        {"no", false},
        {"integers",
         PropertyListArray{std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, std::int64_t{127},
                           std::int64_t{128}, std::int64_t{255}, std::int64_t{256}, std::int64_t{65535},
                           std::int64_t{65536}, std::int64_t{4294967295}, std::int64_t{4294967296},
                           std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min(),
                           std::numeric_limits<std::uint64_t>::max(), std::uint64_t{9223372036854775808U}}},
        {"reals", PropertyListArray{0.0, -0.5, 3.141592653589793, 1e300, -1e-300}},
        {"dates",
         PropertyListArray{PropertyListDate{0}, PropertyListDate{-978307200}, PropertyListDate{441894896}}},
        {"data", PropertyListArray{Bytes{}, Bytes{0}, Bytes{1, 2}, Bytes{1, 2, 3}, everyByte}},
        {"texts", PropertyListArray{"", "plain", "fourteen chars", "fifteen letters", "exactly sixteen.",
                                    std::string(300, 'x'), "Grüße", "e\u0301", "日本語", "emoji 😀",
                                    "<&>\"' ]]>", "line\nbreak"}},
        {"many", many},
        {"nested",
         PropertyListDictionary{{"", PropertyListArray{PropertyListArray{}, PropertyListDictionary{}}},
                                {"Schlüssel", "plain"}}},
    };
}

PropertyListDictionary samplePropertyList() {
    PropertyListDictionary sample = sampleXmlPropertyList();
    sample.emplace("uids", PropertyListArray{PropertyListUid{0}, PropertyListUid{255}, PropertyListUid{256},
                                             PropertyListUid{65536}, PropertyListUid{4294967295}});
    sample.emplace("nul", std::string("a\0b", 3));
    return sample;
}

}  // namespace corvane
