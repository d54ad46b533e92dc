#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QAction>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "desktop/program_application.h"
#include "desktop/qt_interface_files.h"
#include "desktop/qt_tab_view.h"
#include "platform/memory/source_language_strings.h"
#include "platform/system/gettext_strings.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

std::string textOf(const QAction* action) {
    return action->text().toStdString();
}

/// The key that comes with Alt; empty when there is none.
std::string mnemonicOf(const QString& text) {
    return QKeySequence::mnemonic(text).toString().toStdString();
}

class IgnoredEvents final : public SettingsWindowEvents {
  public:
    void toolbarItemClicked(const std::string& /*identifier*/) override {}
    void windowDidShow() override {}
    void windowWillHide() override {}
};

constexpr const char* sourceLanguage = "en";

/// That of the sources, and each that this build has a translation for.
std::vector<std::string> allLanguages() {
    std::vector<std::string> languages = {sourceLanguage};
    for (const auto& folder : std::filesystem::directory_iterator(LOCALE_FOLDER))
        languages.push_back(folder.path().filename());
    return languages;
}

std::unique_ptr<LocalizedStrings> stringsOf(const std::string& language) {
    if (language == sourceLanguage)
        return std::make_unique<SourceLanguageStrings>();
    setenv("LANGUAGE", language.c_str(), 1);
    std::setlocale(LC_MESSAGES, "");  // only then is the variable read anew
    return std::make_unique<GettextStrings>(LOCALE_FOLDER);
}

class TranslatedWindows : public testing::TestWithParam<std::string> {
  protected:
    ~TranslatedWindows() override {
        unsetenv("LANGUAGE");
        std::setlocale(LC_MESSAGES, "");
    }

    QMenuBar& menuBar() { return *dynamic_cast<SettingsWindow&>(*window).menuBar(); }

    /// Everything below the widget that can carry a mnemonic.
    static std::vector<QString> labelledTexts(const QWidget& widget) {
        std::vector<QString> texts;
        for (const auto* button : widget.findChildren<QAbstractButton*>())
            texts.push_back(button->text());
        for (const auto* label : widget.findChildren<QLabel*>()) {
            if (label->buddy() != nullptr)
                texts.push_back(label->text());
        }
        return texts;
    }

    const std::unique_ptr<LocalizedStrings> strings = stringsOf(GetParam());
    IgnoredEvents events;
    QtInterfaceFiles interfaceFiles{*strings, {"Corvane", "1.2.3", "/home/ada/ToImport"}, {}};
    const std::unique_ptr<SettingsWindowView> window = interfaceFiles.loadSettingsWindow(events);
};

void expectDistinctMnemonics(const std::vector<QString>& texts) {
    std::vector<std::string> mnemonics;
    for (const QString& text : texts) {
        const std::string mnemonic = mnemonicOf(text);
        if (mnemonic.empty())
            continue;
        EXPECT_THAT(mnemonics, Not(testing::Contains(mnemonic))) << text.toStdString();
        mnemonics.push_back(mnemonic);
    }
    EXPECT_THAT(mnemonics, Not(IsEmpty()));
}

TEST_P(TranslatedWindows, EachMenuEntryHasAMnemonicOfItsOwn) {
    for (const QAction* menu : menuBar().actions()) {
        std::vector<QString> texts;
        for (const QAction* entry : menu->menu()->actions()) {
            if (entry->isSeparator())
                continue;
            EXPECT_NE(mnemonicOf(entry->text()), "") << textOf(entry);
            texts.push_back(entry->text());
        }
        expectDistinctMnemonics(texts);
    }
}

TEST_P(TranslatedWindows, MenusAndControlsOfATabHaveDistinctMnemonics) {
    std::vector<QString> menus;
    for (const QAction* menu : menuBar().actions())
        menus.push_back(menu->text());
    const std::vector<std::shared_ptr<TabView>> tabs = {interfaceFiles.loadGeneralView(),
                                                        interfaceFiles.loadAccountsView(),
                                                        interfaceFiles.loadPreferencesView()};
    for (const auto& tab : tabs) {
        const QWidget& widget = *dynamic_cast<QtTabView&>(*tab).widget();
        SCOPED_TRACE(widget.objectName().toStdString());
        std::vector<QString> texts = labelledTexts(widget);
        texts.insert(texts.end(), menus.begin(), menus.end());
        expectDistinctMnemonics(texts);
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, TranslatedWindows, testing::ValuesIn(allLanguages()));

TEST(GermanProgram, SpeaksGermanInAGermanLocale) {
    const GettextStrings strings(LOCALE_FOLDER);
    QtInterfaceFiles interfaceFiles(strings, {"Corvane", "1.2.3", "/home/ada/ToImport"}, {});
    IgnoredEvents events;
    const auto window = interfaceFiles.loadSettingsWindow(events);
    std::vector<std::string> menus;
    for (const QAction* menu : dynamic_cast<SettingsWindow&>(*window).menuBar()->actions())
        menus.push_back(textOf(menu));
    EXPECT_THAT(menus, ElementsAre("&Datei", "&Hilfe"));
}

TEST(GermanProgram, KeepsTheDecimalPointForWhateverIsNotShown) {
    EXPECT_STREQ(std::setlocale(LC_MESSAGES, nullptr), "de_DE.UTF-8");
    EXPECT_STREQ(std::localeconv()->decimal_point, ".");
}

}  // namespace
}  // namespace corvane

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // No test may reach the bus of whoever runs it.
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("XDG_RUNTIME_DIR");
    const corvane::ProgramApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
