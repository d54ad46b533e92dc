#include "platform/system/gettext_strings.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <map>
#include <string>

#include "platform/memory/source_language_strings.h"
#include "support/temporary_folder.h"

namespace corvane {
namespace {

void appendNumber(std::string& bytes, std::size_t number) {
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>((number >> shift) & 0xffU);
}

/// The bytes of a compiled catalogue; texts sorted by key, as its readers expect.
std::string catalogue(const std::map<std::string, std::string>& translations) {
    constexpr std::size_t headerSize = 28;
    constexpr std::size_t entrySize = 8;
    const std::size_t count = translations.size();
    std::string keyTable;
    std::string translationTable;
    std::string texts;
    const std::size_t textStart = headerSize + 2 * count * entrySize;
    const auto addText = [&](std::string& table, const std::string& text) {
        appendNumber(table, text.size());
        appendNumber(table, textStart + texts.size());
        texts += text + '\0';
    };
    for (const auto& [key, translation] : translations) {
        addText(keyTable, key);
        addText(translationTable, translation);
    }
    std::string header;
    for (const std::size_t number : {std::size_t{0x950412de}, std::size_t{0}, count, headerSize,
                                     headerSize + count * entrySize, std::size_t{0}, std::size_t{0}})
        appendNumber(header, number);
    return header + keyTable + translationTable + texts;
}

class GettextStringsTest : public ::testing::Test {
  protected:
    GettextStringsTest() {
        const std::filesystem::path folder = folder_.path() / "de" / "LC_MESSAGES";
        std::filesystem::create_directories(folder);
        test::writeFile(folder / "corvane-test.mo",
                        catalogue({{"", "Content-Type: text/plain; charset=UTF-8\n"},
                                   {"Accounts", "Zugänge"},
                                   {"%.2f%% completed", "%.2f%% erledigt"}}));
        EXPECT_NE(std::setlocale(LC_MESSAGES, "de_DE.UTF-8"), nullptr) << "the tests' locale is missing";
    }
    ~GettextStringsTest() override { std::setlocale(LC_MESSAGES, "C"); }

    const test::TemporaryFolder folder_;
    const GettextStrings strings_{folder_.path(), "corvane-test"};
};

TEST_F(GettextStringsTest, TranslatesInUtf8) {
    EXPECT_EQ(strings_.localizedString("Accounts", "Settings Toolbar Item"), "Zugänge");
    EXPECT_EQ(strings_.localizedString("%.2f%% completed", ""), "%.2f%% erledigt");
}

TEST_F(GettextStringsTest, GivesTheKeyWhereThereIsNoTranslation) {
    EXPECT_EQ(strings_.localizedString("General", ""), "General");
    EXPECT_EQ(strings_.localizedString("Accounts", "").size(), std::string("Zugänge").size());
    EXPECT_EQ(strings_.localizedString(std::string_view("Accounts\0x", 10), ""),
              std::string_view("Accounts\0x", 10));
}

TEST_F(GettextStringsTest, GivesNothingForTheEmptyKey) {
    EXPECT_EQ(strings_.localizedString("", ""), "");
}

TEST_F(GettextStringsTest, TakesAPartOfAText) {
    EXPECT_EQ(strings_.localizedString(std::string_view("Accounts tab").substr(0, 8), ""), "Zugänge");
}

TEST(SourceLanguageStringsTest, GivesTheKey) {
    EXPECT_EQ(SourceLanguageStrings().localizedString("Accounts", "comment"), "Accounts");
}

}  // namespace
}  // namespace corvane
