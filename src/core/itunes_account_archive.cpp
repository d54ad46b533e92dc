#include "core/itunes_account_archive.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>

#include "platform/property_list/binary_property_list_writer.h"
#include "platform/property_list/keyed_archive.h"
#include "platform/property_list/property_list_value.h"

namespace corvane {

namespace {

/// Part of the format: the program on the Mac archives its records under this name.
constexpr const char* accountClassName = "Corvane.ITunesAccount";
constexpr const char* nilText = "$null";
constexpr PropertyListUid nil{0};

class AccountListWriter {
  public:
    Bytes write(const ITunesAccountList& accounts) {
        add(nilText);
        const PropertyListUid root = add(PropertyListDictionary{});
        PropertyListArray elements;
        for (const std::shared_ptr<ITunesAccount>& account : accounts)
            elements.emplace_back(addAccount(account.get()));
        objects_[root.index] = PropertyListDictionary{{"NS.objects", std::move(elements)},
                                                      {"$class", addClass(arrayClass_, "NSArray")}};

        return writeBinaryPropertyList(
            PropertyListDictionary{{"$archiver", "NSKeyedArchiver"},
                                   {"$version", std::int64_t{100000}},
                                   {"$top", PropertyListDictionary{{"root", root}}},
                                   {"$objects", std::move(objects_)}});
    }

  private:
    PropertyListUid add(PropertyListValue object) {
        objects_.push_back(std::move(object));
        return {objects_.size() - 1};
    }

    PropertyListUid addAccount(const ITunesAccount* account) {
        const auto known = accounts_.find(account);
        if (known != accounts_.end())
            return known->second;
        // An object stands before what it refers to.
        const PropertyListUid uid = add(PropertyListDictionary{});
        accounts_.emplace(account, uid);
        PropertyListDictionary record;
        record.emplace("vendorID", addText(account->vendorID()));
        record.emplace("email", addText(account->email()));
        record.emplace("password", addText(account->password()));
        record.emplace("name", addText(account->name()));
        record.emplace("$class", addClass(accountClass_, accountClassName));
        objects_[uid.index] = std::move(record);
        return uid;
    }

    PropertyListUid addText(const std::optional<std::string>& text) {
        if (!text)
            return nil;
        if (*text != nilText)
            return add(*text);
        // As a plain text it would read as nil; an object that holds the text does not.
        const PropertyListUid uid = add(PropertyListDictionary{});
        objects_[uid.index] = PropertyListDictionary{
            {"NS.string", *text}, {"$class", addClass(stringClass_, "NSMutableString", "NSString")}};
        return uid;
    }

    PropertyListUid addClass(std::optional<PropertyListUid>& known, const char* name,
                             const char* superclass = nullptr) {
        if (known)
            return *known;
        PropertyListArray classes{name};
        if (superclass != nullptr)
            classes.emplace_back(superclass);
        classes.emplace_back("NSObject");
        known = add(PropertyListDictionary{{"$classname", name}, {"$classes", std::move(classes)}});
        return *known;
    }

    PropertyListArray objects_;
    std::unordered_map<const ITunesAccount*, PropertyListUid> accounts_;
    std::optional<PropertyListUid> accountClass_;
    std::optional<PropertyListUid> arrayClass_;
    std::optional<PropertyListUid> stringClass_;
};

class AccountListReader {
  public:
    explicit AccountListReader(KeyedArchive& archive) : archive_(archive) {}

    std::optional<ITunesAccountList> read() {
        const std::optional<std::vector<PropertyListUid>> elements = archive_.arrayAt(archive_.root());
        if (!elements || !archive_.spend(elements->size() * sizeof(ITunesAccountList::value_type)))
            return std::nullopt;
        ITunesAccountList accounts;
        accounts.reserve(elements->size());
        for (const PropertyListUid element : *elements) {
            std::shared_ptr<ITunesAccount> account = accountAt(element);
            if (!account)
                return std::nullopt;
            accounts.push_back(std::move(account));
        }
        // A field may be missing because it did not fit; such a list must not pass for the stored one.
        if (archive_.isExhausted())
            return std::nullopt;
        return accounts;
    }

  private:
    std::shared_ptr<ITunesAccount> accountAt(PropertyListUid uid) {
        const auto known = accounts_.find(uid.index);
        if (known != accounts_.end())
            return known->second;
        constexpr std::size_t costOfBookkeeping = 128;
        if (!archive_.spend(sizeof(ITunesAccount) + costOfBookkeeping))
            return nullptr;
        const std::optional<KeyedArchive::Object> record = archive_.objectAt(uid);
        if (!record || record->className != accountClassName)
            return nullptr;
        auto account = std::make_shared<ITunesAccount>(std::string(), std::string());
        account->setVendorID(field(*record, "vendorID"));
        account->setEmail(field(*record, "email"));
        account->setPassword(field(*record, "password"));
        account->setName(field(*record, "name"));
        accounts_.emplace(uid.index, account);
        return account;
    }

    std::optional<std::string> field(const KeyedArchive::Object& record, std::string_view key) {
        const std::optional<PropertyListUid> uid = archive_.referenceForKey(record, key);
        return uid ? archive_.stringAt(*uid) : std::nullopt;
    }

    KeyedArchive& archive_;
    std::unordered_map<std::uint64_t, std::shared_ptr<ITunesAccount>> accounts_;
};

}  // namespace

Bytes archivedAccountList(const ITunesAccountList& accounts) {
    return AccountListWriter().write(accounts);
}

std::optional<ITunesAccountList> unarchivedAccountList(ByteView bytes) {
    std::optional<KeyedArchive> archive = KeyedArchive::open(bytes);
    if (!archive)
        return std::nullopt;
    return AccountListReader(*archive).read();
}

}  // namespace corvane
