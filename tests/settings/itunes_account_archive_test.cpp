#include "core/itunes_account_archive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/property_list/property_list_reader.h"
#include "platform/property_list/xml_property_list_scalars.h"
#include "settings/account_archive_builder.h"

namespace corvane {
namespace {

/// One record, laid out by the Mac itself.
constexpr std::string_view macArchive =
    "YnBsaXN0MDDUAQIDBAUGIyRYJHZlcnNpb25YJG9iamVjdHNZJGFyY2hpdmVyVCR0b3ASAAGGoKcHCA4YGRogVSRudWxs0gkKCw1a"
    "TlMub2JqZWN0c1YkY2xhc3OhDIACgAbVDxAREgoTFBQWF1h2ZW5kb3JJRFVlbWFpbFhwYXNzd29yZFRuYW1lgAOAAIAAgASABVQ0"
    "NzExVERlbW/SGxwdHlokY2xhc3NuYW1lWCRjbGFzc2VzXxAVQ29ydmFuZS5JVHVuZXNBY2NvdW50oh0fWE5TT2JqZWN00hscISJX"
    "TlNBcnJheaIhH18QD05TS2V5ZWRBcmNoaXZlctElJlRyb290gAEACAARABoAIwAtADIANwA/AEUASgBVAFwAXgBgAGIAbQB2AHwA"
    "hQCKAIwAjgCQAJIAlACZAJ4AowCuALcAzwDSANsA4ADoAOsA/QEAAQUAAAAAAAACAQAAAAAAAAAnAAAAAAAAAAAAAAAAAAABBw==";

std::shared_ptr<ITunesAccount> account(std::optional<std::string> vendorID, std::optional<std::string> email,
                                       std::optional<std::string> password, std::optional<std::string> name) {
    auto made = std::make_shared<ITunesAccount>("", "");
    made->setVendorID(std::move(vendorID));
    made->setEmail(std::move(email));
    made->setPassword(std::move(password));
    made->setName(std::move(name));
    return made;
}

using Field = std::optional<std::string>;
using Fields = std::vector<Field>;

/// Vendor ID, e-mail, password and name of each record.
std::optional<std::vector<Fields>> fieldsOf(const std::optional<ITunesAccountList>& accounts) {
    if (!accounts)
        return std::nullopt;
    std::vector<Fields> fields;
    for (const auto& record : *accounts)
        fields.push_back({record->vendorID(), record->email(), record->password(), record->name()});
    return fields;
}

std::optional<std::vector<Fields>> unarchivedFields(ByteView archive) {
    return fieldsOf(unarchivedAccountList(archive));
}

const Fields demoFields = {"4711", std::nullopt, std::nullopt, "Demo"};
const std::vector<Fields> demoList = {demoFields};

// Writing

TEST(AccountArchive, HasTheShapeThatTheMacGivesIt) {
    const ITunesAccountList accounts = {std::make_shared<ITunesAccount>("4711", "Demo")};
    const std::optional<Bytes> mac = xmlData(macArchive);
    ASSERT_TRUE(mac);
    ASSERT_EQ(mac->size(), 373U);
    const Bytes ours = archivedAccountList(accounts);
    EXPECT_TRUE(readPropertyList(ours) == readPropertyList(*mac));
    EXPECT_EQ(readPropertyList(ours), PropertyListValue(AccountArchiveBuilder().propertyList()));
}

TEST(AccountArchive, OfAnEmptyListIsAnArchiveOfAnEmptyArray) {
    const PropertyListDictionary expected = {
        {"$archiver", "NSKeyedArchiver"},
        {"$version", std::int64_t{100000}},
        {"$top", PropertyListDictionary{{"root", uid(1)}}},
        {"$objects",
         PropertyListArray{"$null",
                           PropertyListDictionary{{"NS.objects", PropertyListArray{}}, {"$class", uid(2)}},
                           PropertyListDictionary{{"$classname", "NSArray"},
                                                  {"$classes", PropertyListArray{"NSArray", "NSObject"}}}}}};
    const Bytes archive = archivedAccountList({});
    EXPECT_EQ(readPropertyList(archive), PropertyListValue(expected));
    EXPECT_EQ(unarchivedFields(archive), std::vector<Fields>());
}

TEST(AccountArchive, KeepsAbsentAndEmptyApartInEveryField) {
    const ITunesAccountList accounts = {
        account(std::nullopt, std::nullopt, std::nullopt, std::nullopt),
        account("", "", "", ""),
        account("1", std::nullopt, "", "x"),
        account(std::nullopt, "a@example.com", "pass word", std::nullopt),
    };
    EXPECT_EQ(unarchivedFields(archivedAccountList(accounts)), fieldsOf(accounts));
}

TEST(AccountArchive, KeepsEveryText) {
    const std::string withNul("a\0b", 3);
    const ITunesAccountList accounts = {
        account("$null", "$class", "NSArray", "$objects"),
        account("e\u0301", "é", "日本語 😀", withNul),
        account(std::string(14, 'x'), std::string(15, 'x'), std::string(300, 'y'), std::string(70'000, 'z')),
        account("same", "same", "same", "same"),
        account("4711", "$null", "$null", "$null"),
    };
    EXPECT_EQ(unarchivedFields(archivedAccountList(accounts)), fieldsOf(accounts));
}

TEST(AccountArchive, HoldsTheTextDollarNullAsAMutableString) {
    const Bytes archive = archivedAccountList({account("$null", std::nullopt, std::nullopt, "$null")});
    const auto content = readPropertyList(archive);
    const PropertyListArray& objects =
        *content->get<PropertyListDictionary>()->at("$objects").get<PropertyListArray>();
    const PropertyListDictionary expectedClass = {
        {"$classname", "NSMutableString"},
        {"$classes", PropertyListArray{"NSMutableString", "NSString", "NSObject"}}};
    const PropertyListDictionary expectedText = {{"NS.string", "$null"}, {"$class", uid(4)}};
    EXPECT_EQ(objects.at(3), PropertyListValue(expectedText));
    EXPECT_EQ(objects.at(4), PropertyListValue(expectedClass));
    EXPECT_EQ(objects.at(5), PropertyListValue(expectedText));
}

TEST(AccountArchive, HoldsThePasswordInClear) {
    const Bytes archive = archivedAccountList({account("1", "a@example.com", "secret", "n")});
    EXPECT_NE(asText(archive).find("secret"), std::string_view::npos);
}

TEST(AccountArchive, OneRecordTwiceInTheListIsOneRecordAgain) {
    const auto shared = std::make_shared<ITunesAccount>("1", "shared");
    const ITunesAccountList accounts = {shared, std::make_shared<ITunesAccount>("1", "shared"), shared};
    const auto read = unarchivedAccountList(archivedAccountList(accounts));
    ASSERT_TRUE(read);
    ASSERT_EQ(read->size(), 3U);
    EXPECT_EQ(read->at(0), read->at(2));
    EXPECT_NE(read->at(0), read->at(1));
}

TEST(AccountArchive, HoldsManyRecords) {
    ITunesAccountList accounts;
    for (int number = 0; number < 2'000; ++number)
        accounts.push_back(account(std::to_string(number), "mail", std::nullopt, "Näme"));
    EXPECT_EQ(unarchivedFields(archivedAccountList(accounts)), fieldsOf(accounts));
}

// Reading

TEST(AccountArchive, OfTheMacIsRead) {
    EXPECT_EQ(unarchivedFields(xmlData(macArchive).value()), demoList);
}

TEST(AccountArchive, InXmlIsRead) {
    const std::string xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>$version</key><integer>100000</integer><key>$archiver</key><string>NSKeyedArchiver</string>
<key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>
<key>$objects</key><array>
<string>$null</string>
<dict><key>$class</key><dict><key>CF$UID</key><integer>5</integer></dict>
<key>NS.objects</key><array><dict><key>CF$UID</key><integer>2</integer></dict></array></dict>
<dict><key>$class</key><dict><key>CF$UID</key><integer>4</integer></dict>
<key>email</key><dict><key>CF$UID</key><integer>0</integer></dict>
<key>name</key><dict><key>CF$UID</key><integer>3</integer></dict></dict>
<string>Gr&#252;&#xdf;e &amp; mehr</string>
<dict><key>$classname</key><string>Corvane.ITunesAccount</string></dict>
<dict><key>$classname</key><string>NSMutableArray</string></dict>
</array></dict></plist>)";
    const Fields expected = {std::nullopt, std::nullopt, std::nullopt, "Grüße & mehr"};
    EXPECT_EQ(unarchivedFields(asBytes(xml)), std::vector<Fields>{expected});
}

struct AcceptedCase {
    const char* what;
    std::function<void(AccountArchiveBuilder&)> change;
    Fields fields = demoFields;
};

TEST(AccountArchive, AcceptsWhatOtherWritersDo) {
    using Builder = AccountArchiveBuilder;
    const Field none;
    const std::vector<AcceptedCase> cases = {
        {"nothing changed", [](Builder&) {}},
        {"mutable array", [](Builder& b) { b.at(Builder::listClass).at("$classname") = "NSMutableArray"; }},
        {"unused objects", [](Builder& b) { b.add(PropertyListArray{"unused"}); }},
        {"extra keys at top level", [](Builder& b) { b.others.emplace("extra", true); }},
        {"extra roots", [](Builder& b) { b.top.emplace("other", uid(99)); }},
        {"empty list of classes",
         [](Builder& b) { b.at(Builder::recordClass).at("$classes") = PropertyListArray{}; }},
        {"no list of classes", [](Builder& b) { b.at(Builder::recordClass).erase("$classes"); }},
        {"other list of classes",
         [](Builder& b) { b.at(Builder::recordClass).at("$classes") = PropertyListArray{"Other"}; }},
        {"list of classes of another type",
         [](Builder& b) { b.at(Builder::recordClass).at("$classes") = true; }},
        {"extra keys in the record", [](Builder& b) { b.setField("extra", uid(99)); }},
        {"missing keys",
         [](Builder& b) {
             b.at(Builder::record).erase("email");
             b.at(Builder::record).erase("name");
         },
         {"4711", none, none, none}},
        {"$null at another place",
         [](Builder& b) { b.setField("name", b.add("$null")); },
         {"4711", none, none, none}},
        {"text in an NSString",
         [](Builder& b) {
             const auto stringClass = b.add(PropertyListDictionary{{"$classname", "NSString"}});
             b.setField("email", b.add(PropertyListDictionary{{"NS.string", "x"}, {"$class", stringClass}}));
         },
         {"4711", "x", none, "Demo"}},
        {"$null in an NSMutableString",
         [](Builder& b) {
             const auto stringClass = b.add(PropertyListDictionary{{"$classname", "NSMutableString"}});
             b.setField("email",
                        b.add(PropertyListDictionary{{"NS.string", "$null"}, {"$class", stringClass}}));
         },
         {"4711", "$null", none, "Demo"}},
        {"NS.string is no text",
         [](Builder& b) {
             const auto stringClass = b.add(PropertyListDictionary{{"$classname", "NSString"}});
             b.setField("name",
                        b.add(PropertyListDictionary{{"NS.string", uid(3)}, {"$class", stringClass}}));
         },
         {"4711", none, none, none}},
        {"one text for two fields",
         [](Builder& b) { b.setField("email", uid(4)); },
         {"4711", "Demo", none, "Demo"}},
        {"empty text", [](Builder& b) { b.setField("email", b.add("")); }, {"4711", "", none, "Demo"}},
    };
    for (const AcceptedCase& known : cases) {
        AccountArchiveBuilder builder;
        known.change(builder);
        EXPECT_EQ(unarchivedFields(builder.bytes()), std::vector<Fields>{known.fields}) << known.what;
    }
}

TEST(AccountArchive, AFieldThatIsNoTextIsAbsentAndTheOthersStay) {
    const std::vector<PropertyListValue> objects = {
        true,
        std::int64_t{5},
        1.5,
        PropertyListDate{5},
        Bytes{'x'},
        PropertyListArray{"x"},
        uid(3),
        PropertyListDictionary{},
        PropertyListDictionary{{"NS.string", "no class"}},
        PropertyListDictionary{{"NS.string", "other class"}, {"$class", uid(6)}},
        PropertyListDictionary{{"NS.string", "class out of range"}, {"$class", uid(99)}}};
    const Fields expected = {"4711", std::nullopt, std::nullopt, "Demo"};
    for (const char* key : {"email", "password"}) {
        for (const PropertyListValue& object : objects) {
            AccountArchiveBuilder builder;
            builder.setField(key, builder.add(object));
            EXPECT_EQ(unarchivedFields(builder.bytes()), demoList) << key << object.content().index();
        }
        for (const std::uint64_t index : {1U, 2U, 5U, 7U, 1'000'000'000U}) {
            AccountArchiveBuilder builder;
            builder.setField(key, uid(index));
            EXPECT_EQ(unarchivedFields(builder.bytes()), demoList) << key << index;
        }
        for (const PropertyListValue& direct : {PropertyListValue("direct"), PropertyListValue(true)}) {
            AccountArchiveBuilder builder;
            builder.setField(key, direct);
            EXPECT_EQ(unarchivedFields(builder.bytes()), demoList) << key << " not a reference";
        }
    }
}

TEST(AccountArchive, LoneSurrogatesAreReplaced) {
    AccountArchiveBuilder builder;
    builder.setField("email", builder.add("\u00FFa"));
    Bytes archive = builder.bytes();
    const Bytes text = {0x62, 0x00, 0xFF, 0x00, 'a'};
    const auto found = std::search(archive.begin(), archive.end(), text.begin(), text.end());
    ASSERT_NE(found, archive.end());
    *(found + 1) = 0xD8;
    const Fields expected = {"4711", "\uFFFDa", std::nullopt, "Demo"};
    EXPECT_EQ(unarchivedFields(archive), std::vector<Fields>{expected});
}

TEST(AccountArchive, IsIgnoredAsAWholeWhenItIsNotAListOfRecords) {
    using Builder = AccountArchiveBuilder;
    struct Case {
        const char* what;
        std::function<void(Builder&)> change;
    };
    const auto withListClass = [](const char* name) {
        return [name](Builder& b) { b.at(Builder::listClass).at("$classname") = name; };
    };
    const auto withRecordClass = [](const char* name) {
        return [name](Builder& b) { b.at(Builder::recordClass).at("$classname") = name; };
    };
    const std::vector<Case> cases = {
        {"no version", [](Builder& b) { b.others.erase("$version"); }},
        {"other version", [](Builder& b) { b.others.at("$version") = std::int64_t{1}; }},
        {"version is a text", [](Builder& b) { b.others.at("$version") = "100000"; }},
        {"no archiver", [](Builder& b) { b.others.erase("$archiver"); }},
        {"other archiver", [](Builder& b) { b.others.at("$archiver") = "NSArchiver"; }},
        {"archiver is no text", [](Builder& b) { b.others.at("$archiver") = true; }},
        {"no $top", [](Builder& b) { b.others.emplace("$top", true); }},
        {"no root", [](Builder& b) { b.top.clear(); }},
        {"root of another name",
         [](Builder& b) {
             b.top = {{"Root", uid(1)}};
         }},
        {"root is a number",
         [](Builder& b) {
             b.top = {{"root", std::int64_t{1}}};
         }},
        {"root out of range",
         [](Builder& b) {
             b.top = {{"root", uid(7)}};
         }},
        {"root far out of range",
         [](Builder& b) {
             b.top = {{"root", uid(~std::uint64_t{0})}};
         }},
        {"root is nil",
         [](Builder& b) {
             b.top = {{"root", uid(0)}};
         }},
        {"root is a text",
         [](Builder& b) {
             b.top = {{"root", uid(3)}};
         }},
        {"root is a record",
         [](Builder& b) {
             b.top = {{"root", uid(2)}};
         }},
        {"root is a plain array",
         [](Builder& b) {
             b.top = {{"root", b.add(PropertyListArray{uid(2)})}};
         }},
        {"root is a dictionary", withListClass("NSDictionary")},
        {"root is a set", withListClass("NSSet")},
        {"root class in another case", withListClass("nsarray")},
        {"root without elements", [](Builder& b) { b.at(Builder::list).erase("NS.objects"); }},
        {"elements of another type", [](Builder& b) { b.setElements(uid(2)); }},
        {"root without class", [](Builder& b) { b.at(Builder::list).erase("$class"); }},
        {"root class out of range", [](Builder& b) { b.at(Builder::list).at("$class") = uid(99); }},
        {"root class is no class", [](Builder& b) { b.at(Builder::list).at("$class") = uid(3); }},
        {"element is nil",
         [](Builder& b) {
             b.setElements(PropertyListArray{uid(2), uid(0)});
         }},
        {"element is a text",
         [](Builder& b) {
             b.setElements(PropertyListArray{uid(2), uid(3)});
         }},
        {"element is a list", [](Builder& b) { b.setElements(PropertyListArray{uid(1)}); }},
        {"element is no reference", [](Builder& b) { b.setElements(PropertyListArray{std::int64_t{2}}); }},
        {"element out of range",
         [](Builder& b) {
             b.setElements(PropertyListArray{uid(2), uid(7)});
         }},
        {"record of another class", withRecordClass("NSObject")},
        {"record class in another case", withRecordClass("corvane.itunesaccount")},
        {"record class without module", withRecordClass("ITunesAccount")},
        {"record class is a number",
         [](Builder& b) { b.at(Builder::recordClass).at("$classname") = std::int64_t{1}; }},
        {"record class without name", [](Builder& b) { b.at(Builder::recordClass).erase("$classname"); }},
        {"record without class", [](Builder& b) { b.at(Builder::record).erase("$class"); }},
        {"record class out of range", [](Builder& b) { b.setField("$class", uid(99)); }},
        {"record class is a text", [](Builder& b) { b.setField("$class", "Corvane.ITunesAccount"); }},
        {"archive of nil",
         [](Builder& b) {
             b.objects = {"$null"};
             b.top = {{"root", uid(0)}};
         }},
        {"empty table", [](Builder& b) { b.objects.clear(); }},
    };
    for (const Case& known : cases) {
        AccountArchiveBuilder builder;
        known.change(builder);
        EXPECT_EQ(unarchivedFields(builder.bytes()), std::nullopt) << known.what;
    }
}

TEST(AccountArchive, IsIgnoredWithoutItsParts) {
    const PropertyListDictionary good = AccountArchiveBuilder().propertyList();
    for (const char* key : {"$objects", "$top"}) {
        PropertyListDictionary archive = good;
        archive.erase(key);
        EXPECT_EQ(unarchivedFields(writeBinaryPropertyList(archive)), std::nullopt) << key;
        archive.emplace(key, "text");
        EXPECT_EQ(unarchivedFields(writeBinaryPropertyList(archive)), std::nullopt) << key;
    }
    EXPECT_EQ(unarchivedFields(writeBinaryPropertyList(PropertyListArray{good})), std::nullopt);
    EXPECT_EQ(unarchivedFields(writeBinaryPropertyList("text")), std::nullopt);
    EXPECT_EQ(unarchivedFields({}), std::nullopt);
    EXPECT_EQ(unarchivedFields(asBytes("not an archive")), std::nullopt);
}

}  // namespace
}  // namespace corvane
