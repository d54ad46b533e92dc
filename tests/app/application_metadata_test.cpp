#include "app/application_metadata.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>

#include "platform/memory/in_memory_bundle.h"
#include "platform/memory/source_language_strings.h"

namespace corvane {
namespace {

/// Translates by "comment/key".
class DictionaryStrings final : public LocalizedStrings {
  public:
    explicit DictionaryStrings(std::map<std::string, std::string> translations)
        : translations_(std::move(translations)) {}

    std::string localizedString(std::string_view key, std::string_view comment) const override {
        const auto found = translations_.find(std::string(comment) + '/' + std::string(key));
        return found == translations_.end() ? std::string(key) : found->second;
    }

  private:
    std::map<std::string, std::string> translations_;
};

class ApplicationMetadataTest : public testing::Test {
  protected:
    InMemoryBundle bundle{InMemoryBundle::Information{{"CFBundleName", "Corvane"},
                                                      {"CFBundleVersion", "1.4.2"},
                                                      {"CFBundleShortVersionString", "One and a half"}}};
    SourceLanguageStrings strings;
    QVApp application{bundle, strings};
};

TEST_F(ApplicationMetadataTest, TakesNameAndBuildVersionFromTheBundle) {
    EXPECT_EQ(application.appName(), "Corvane");
    EXPECT_EQ(application.appVersion(), "1.4.2");
}

TEST_F(ApplicationMetadataTest, TheVersionIsNoFormat) {
    bundle.setInfoDictionary(InMemoryBundle::Information{{"CFBundleVersion", "%@ 100%% %i"}});
    EXPECT_EQ(application.appVersion(), "%@ 100%% %i");
}

TEST_F(ApplicationMetadataTest, TheLongNameIsItsKeyWithoutATranslation) {
    EXPECT_EQ(application.longAppName(), "Tessaly");
}

TEST_F(ApplicationMetadataTest, LongNameAndVersionFollowTheLanguage) {
    const DictionaryStrings german(
        {{"Long App Name/Tessaly", "Tessaly für Verkaufszahlen"}, {"about/%@", "Fassung %@"}});
    const QVApp translated(bundle, german);
    EXPECT_EQ(translated.longAppName(), "Tessaly für Verkaufszahlen");
    EXPECT_EQ(translated.appVersion(), "Fassung 1.4.2");
    EXPECT_EQ(translated.appName(), "Corvane");
}

TEST_F(ApplicationMetadataTest, ABundleWithoutInformationIsFatal) {
    bundle.setInfoDictionary(std::nullopt);
    EXPECT_DEATH(application.appName(), "no information dictionary");
    EXPECT_DEATH(application.appVersion(), "no information dictionary");
}

TEST_F(ApplicationMetadataTest, AMissingKeyIsFatal) {
    bundle.setInfoDictionary(InMemoryBundle::Information{});
    EXPECT_DEATH(application.appName(), "CFBundleName");
    EXPECT_DEATH(application.appVersion(), "CFBundleVersion");
}

TEST_F(ApplicationMetadataTest, AValueThatIsNoTextIsFatal) {
    const PropertyListValue values[] = {true, std::int64_t{1}, 1.5, Bytes{'1'}, PropertyListArray{"1.4.2"}};
    for (const PropertyListValue& value : values) {
        bundle.setInfoDictionary(
            InMemoryBundle::Information{{"CFBundleName", value}, {"CFBundleVersion", value}});
        EXPECT_DEATH(application.appName(), "CFBundleName") << value.content().index();
        EXPECT_DEATH(application.appVersion(), "CFBundleVersion") << value.content().index();
    }
}

TEST_F(ApplicationMetadataTest, AnEmptyTextIsAText) {
    bundle.setInfoDictionary(InMemoryBundle::Information{{"CFBundleName", ""}, {"CFBundleVersion", ""}});
    EXPECT_EQ(application.appName(), "");
    EXPECT_EQ(application.appVersion(), "");
}

}  // namespace
}  // namespace corvane
