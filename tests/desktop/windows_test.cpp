#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QTest>
#include <QTextEdit>
#include <QToolBar>
#include <QToolButton>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/app_delegate.h"
#include "desktop/event_waiting.h"
#include "desktop/import_view.h"
#include "desktop/qt_interface_files.h"
#include "desktop/qt_tab_view.h"
#include "platform/memory/in_memory_bundle.h"
#include "platform/memory/in_memory_distributed_notification_center.h"
#include "platform/memory/recording_application.h"
#include "platform/memory/recording_workspace.h"
#include "support/engine_environment.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The real windows over an engine in memory.
class WindowsTest : public testing::Test, protected test::EngineEnvironment {
  protected:
    ~WindowsTest() override { mainQueue.runDueTasks(); }

    SettingsWindow& window() {
        return dynamic_cast<SettingsWindow&>(*delegate.settingsWindowController()->window());
    }
    std::vector<QAction*> tabs() {
        const auto actions = window().findChild<QToolBar*>("tabs")->actions();
        return {actions.begin(), actions.end()};
    }
    void clickTab(int index) {
        auto* toolbar = window().findChild<QToolBar*>("tabs");
        QTest::mouseClick(toolbar->widgetForAction(toolbar->actions().at(index)), Qt::LeftButton);
    }
    QWidget* widgetOfTab(std::size_t index) {
        return dynamic_cast<QtTabView&>(delegate.settingsWindowController()->viewControllers()[index]->view())
            .widget();
    }
    std::vector<QWidget*> shownContent() {
        std::vector<QWidget*> shown;
        for (QObject* child : window().findChild<QWidget*>("contentArea")->children()) {
            if (auto* widget = qobject_cast<QWidget*>(child))
                shown.push_back(widget);
        }
        return shown;
    }
    static std::vector<QDialog*> visibleSheets() {
        std::vector<QDialog*> sheets;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == "importSheet" && widget->isVisible())
                sheets.push_back(qobject_cast<QDialog*>(widget));
        }
        return sheets;
    }
    void trigger(const char* action) { window().findChild<QAction*>(action)->trigger(); }

    void launchWithAccount() {
        addAccount("1");
        fillCache([](const std::string&) { return false; });
        delegate.applicationDidFinishLaunching();
    }
    void requestImport() {
        distributedCenter.deliver({.name = "kNotificationCorvaneReloadData", .object = {}});
    }

    std::vector<std::string> commands;
    NotificationCenter notificationCenter;
    InMemoryDistributedNotificationCenter distributedCenter;
    RecordingApplication application;
    QtInterfaceFiles interfaceFiles{strings,
                                    {"Corvane", "1.2.3", "/home/somebody/ToImport"},
                                    {.checkForUpdates = [this] { commands.emplace_back("updates"); },
                                     .openReportsFolder = [this] { commands.emplace_back("folder"); },
                                     .showAbout = [this] { commands.emplace_back("about"); },
                                     .quit = [this] { commands.emplace_back("quit"); }}};
    ReportUpdateViewController::Collaborators importWindow{
        manager, files, mainQueue, notificationCenter, distributedCenter, application, strings, log};
    ScriptedHttpClient updateClient{[](const HttpRequest&) { return test::answerWithTransportFailure(); }};
    InMemoryBundle bundle{InMemoryBundle::Information{{bundleVersionKey, "1.1"}}};
    RecordingWorkspace workspace;
    QVApp metadata{bundle, strings};
    UpdateCheck updateCheck{
        {"updates.example", updateClient, backgroundQueue, mainQueue, metadata, alerts, strings, workspace}};
    AppDelegate delegate{{settings, interfaceFiles, alerts, updateCheck, importWindow}};
};

TEST_F(WindowsTest, ShowsTheTabsInOrderAndTheGeneralTabFirst) {
    delegate.applicationDidFinishLaunching();
    EXPECT_TRUE(window().isVisible());
    std::vector<std::string> labels;
    for (const QAction* tab : tabs()) {
        labels.push_back(tab->text().toStdString());
        EXPECT_FALSE(tab->icon().pixmap(32).isNull()) << labels.back();
    }
    EXPECT_THAT(labels, ElementsAre("General", "Accounts", "Advanced"));
    EXPECT_TRUE(tabs()[0]->isChecked());
    EXPECT_THAT(shownContent(), ElementsAre(widgetOfTab(0)));
}

TEST_F(WindowsTest, SaysWhatTheProgramIsOnTheGeneralTab) {
    delegate.applicationDidFinishLaunching();
    EXPECT_EQ(window().findChild<QTextEdit*>("programName")->toPlainText(), "Corvane");
    EXPECT_EQ(window().findChild<QTextEdit*>("programVersion")->toPlainText(), "Version 1.2.3");
    EXPECT_EQ(window().findChild<QTextEdit*>("reportsFolder")->toPlainText(), "/home/somebody/ToImport");
}

TEST_F(WindowsTest, SwitchesTheTabAndItsMarkByClick) {
    delegate.applicationDidFinishLaunching();
    clickTab(1);
    EXPECT_THAT(shownContent(), ElementsAre(widgetOfTab(1)));
    EXPECT_TRUE(widgetOfTab(1)->isVisible());
    EXPECT_FALSE(widgetOfTab(0)->isVisible());
    EXPECT_FALSE(tabs()[0]->isChecked());
    EXPECT_TRUE(tabs()[1]->isChecked());
    clickTab(1);
    EXPECT_TRUE(tabs()[1]->isChecked()) << "a click on the shown tab";
    EXPECT_THAT(shownContent(), ElementsAre(widgetOfTab(1)));
}

TEST_F(WindowsTest, SwitchesTheTabByKeyboard) {
    delegate.applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([&] { return window().isActiveWindow(); }));
    QTest::keyClick(&window(), Qt::Key_3, Qt::ControlModifier);
    EXPECT_THAT(shownContent(), ElementsAre(widgetOfTab(2)));
    QWidget* button = window().findChild<QToolBar*>("tabs")->widgetForAction(tabs()[1]);
    EXPECT_EQ(button->accessibleName(), "Accounts");
    EXPECT_TRUE(button->focusPolicy() & Qt::TabFocus);
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Space);
    EXPECT_THAT(shownContent(), ElementsAre(widgetOfTab(1)));
}

TEST_F(WindowsTest, MarksOnlyTheTabThatWasSetLast) {
    delegate.applicationDidFinishLaunching();
    clickTab(2);
    window().setSelectedToolbarItem("settingsAccountsIdentifier");
    EXPECT_FALSE(tabs()[2]->isChecked());
    EXPECT_TRUE(tabs()[1]->isChecked());
    window().setSelectedToolbarItem("unknown");
    EXPECT_TRUE(tabs()[1]->isChecked());
}

TEST_F(WindowsTest, FillsTheContentAreaWithTheTabWhateverTheWindowsSizeIs) {
    delegate.applicationDidFinishLaunching();
    const QWidget& area = *window().findChild<QWidget*>("contentArea");
    const QSize before = window().size();
    clickTab(1);
    EXPECT_EQ(window().size(), before) << "a change of tabs leaves the window's size alone";
    window().resize(1000, 700);
    QApplication::processEvents();
    EXPECT_EQ(widgetOfTab(1)->geometry(), area.rect());
}

TEST_F(WindowsTest, HidesOnCloseAndComesBackOnReopen) {
    delegate.applicationDidFinishLaunching();
    EXPECT_TRUE(window().close());
    EXPECT_FALSE(window().isVisible());
    EXPECT_FALSE(delegate.applicationShouldHandleReopen());
    EXPECT_TRUE(window().isVisible());
}

TEST_F(WindowsTest, TellsBeforeItHidesAndAfterItIsShownAndNothingWhenMinimised) {
    struct Recorder : SettingsWindowEvents {
        void toolbarItemClicked(const std::string& identifier) override { events.push_back(identifier); }
        void windowDidShow() override { events.emplace_back(window->isVisible() ? "shown" : "shown early"); }
        void windowWillHide() override {
            events.emplace_back(window->isVisible() ? "hiding" : "hidden late");
        }
        SettingsWindow* window = nullptr;
        std::vector<std::string> events;
    } recorder;
    {
        SettingsWindow own(recorder, {}, strings);
        recorder.window = &own;
        own.show();
        own.show();
        own.close();
        own.close();
        own.show();
        own.showMinimized();
        own.show();
        EXPECT_FALSE(own.isMinimized());
        EXPECT_THAT(recorder.events, ElementsAre("shown", "hiding", "shown"));
    }
    EXPECT_THAT(recorder.events, ElementsAre("shown", "hiding", "shown")) << "its end is no hiding";
}

TEST_F(WindowsTest, OffersTheCommandsInItsMenu) {
    delegate.applicationDidFinishLaunching();
    trigger("openReportsFolder");
    trigger("checkForUpdates");
    trigger("about");
    trigger("quit");
    EXPECT_THAT(commands, ElementsAre("folder", "updates", "about", "quit"));
    EXPECT_EQ(window().findChild<QAction*>("quit")->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));
}

TEST_F(WindowsTest, GivesEveryButtonOfTheToolbarAnAccessibleName) {
    delegate.applicationDidFinishLaunching();
    for (const QToolButton* button : window().findChildren<QToolButton*>()) {
        const bool isNamed = !button->accessibleName().isEmpty();
        EXPECT_TRUE(isNamed || !button->isVisible()) << button->objectName().toStdString();
    }
}

TEST_F(WindowsTest, ShowsTheImportAsASheetAndStartsItOnce) {
    launchWithAccount();
    requestImport();
    ASSERT_EQ(visibleSheets().size(), 1U);
    const QDialog& sheet = *visibleSheets().front();
    EXPECT_EQ(sheet.parentWidget(), &window());
    EXPECT_EQ(sheet.windowModality(), Qt::WindowModal);
    EXPECT_EQ(sheet.minimumSize(), sheet.maximumSize()) << "not resizable";
    EXPECT_EQ(sheet.findChild<QLabel*>("importDescription")->text(), "Preparing Import...");
    EXPECT_EQ(mainQueue.pendingCount(), 1U) << "the start of one run";
    runToEnd();
    EXPECT_THAT(visibleSheets(), IsEmpty());
    EXPECT_TRUE(window().isVisible());
}

TEST_F(WindowsTest, CannotDismissASheet) {
    launchWithAccount();
    requestImport();
    QDialog& sheet = *visibleSheets().front();
    QTest::keyClick(&sheet, Qt::Key_Escape);
    sheet.close();
    sheet.reject();
    EXPECT_TRUE(sheet.isVisible());
    EXPECT_FALSE(sheet.windowFlags() & Qt::WindowCloseButtonHint);
    runToEnd();
    EXPECT_THAT(visibleSheets(), IsEmpty());
}

TEST_F(WindowsTest, ShowsTheSheetAlsoOverAHiddenOrMinimisedWindow) {
    launchWithAccount();
    window().close();
    requestImport();
    EXPECT_EQ(visibleSheets().size(), 1U);
    EXPECT_FALSE(window().isVisible());
    runToEnd();
    EXPECT_THAT(visibleSheets(), IsEmpty());
    EXPECT_EQ(distributedCenter.posted().size(), 1U);

    window().show();
    window().showMinimized();
    requestImport();
    EXPECT_EQ(visibleSheets().size(), 1U);
    EXPECT_FALSE(window().isMinimized()) << "a desktop would hide the sheet together with its window";
    runToEnd();
    EXPECT_EQ(distributedCenter.posted().size(), 2U);
}

TEST_F(WindowsTest, KeepsTwoSheetsApartAndEndsBoth) {
    launchWithAccount();
    requestImport();
    requestImport();
    EXPECT_EQ(visibleSheets().size(), 2U);
    window().close();
    runToEnd();
    EXPECT_THAT(visibleSheets(), IsEmpty());
    EXPECT_EQ(distributedCenter.posted().size(), 2U);
}

TEST_F(WindowsTest, GoesAwayWithASheetOpen) {
    launchWithAccount();
    auto ownWindow = interfaceFiles.loadSettingsWindow(*delegate.settingsWindowController());
    auto controller =
        std::make_shared<ReportUpdateViewController>(importWindow, interfaceFiles.loadReportUpdateView());
    const auto sheet = interfaceFiles.makeSheetWindow(controller);
    EXPECT_FALSE(sheet->endSheet()) << "on no window yet";
    ownWindow->beginSheet(sheet);
    EXPECT_EQ(visibleSheets().size(), 1U);
    ownWindow.reset();
    EXPECT_THAT(visibleSheets(), IsEmpty());
    EXPECT_FALSE(sheet->endSheet());
    controller->updateView();
}

TEST(ImportView, ShowsHalfPercentsAndSurvivesValuesThatAreNone) {
    const SourceLanguageStrings strings;
    ImportView view(strings);
    auto* bar = view.widget()->findChild<QProgressBar*>("importProgress");
    EXPECT_FALSE(bar->accessibleName().isEmpty());
    view.startProgressAnimation();
    EXPECT_EQ(bar->maximum(), 0) << "to and fro";
    struct Case {
        double percentage;
        int value;
    };
    const std::vector<Case> cases{{0, 0},
                                  {37.5, 3750},
                                  {100, 10000},
                                  {250, 10000},
                                  {-3, 0},
                                  {std::numeric_limits<double>::quiet_NaN(), 0},
                                  {std::numeric_limits<double>::infinity(), 10000},
                                  {-std::numeric_limits<double>::infinity(), 0}};
    for (const Case& item : cases) {
        view.setProgressValue(item.percentage);
        EXPECT_EQ(bar->value(), item.value) << item.percentage;
        EXPECT_EQ(bar->maximum(), 10000);
    }
}

TEST(ImportView, LetsABlockRunThroughTheBarUntilTheFirstValueComes) {
    const SourceLanguageStrings strings;
    ImportView view(strings);
    auto* bar = view.widget()->findChild<QProgressBar*>("importProgress");
    view.widget()->show();
    const auto picture = [bar] { return bar->grab().toImage(); };
    const QImage empty = picture();
    view.startProgressAnimation();
    const QImage begin = picture();
    EXPECT_NE(begin, empty);
    EXPECT_TRUE(waitUntil([&] { return picture() != begin; }));
    view.setProgressValue(0);
    EXPECT_TRUE(waitUntil([&] { return picture() == empty; }));
}

TEST(ImportView, ShowsTheLatestOfManyChangesTogetherWhileItIsSeen) {
    const SourceLanguageStrings strings;
    ImportView view(strings);
    const auto* description = view.widget()->findChild<QLabel*>("importDescription");
    const auto* percentage = view.widget()->findChild<QLabel*>("importPercentage");
    const auto* bar = view.widget()->findChild<QProgressBar*>("importProgress");
    view.setDescription("Preparing");
    EXPECT_EQ(description->text(), "Preparing") << "a window gets its size from it";
    view.widget()->show();
    for (int i = 1; i <= 3; ++i) {
        view.setDescription(std::to_string(i) + " of 4");
        view.setProgressText(std::to_string(25 * i) + "%");
        view.setProgressValue(25 * i);
    }
    EXPECT_EQ(description->text(), "Preparing");
    EXPECT_TRUE(waitUntil([&] { return description->text() == "3 of 4"; }));
    EXPECT_EQ(percentage->text(), "75%");
    EXPECT_EQ(bar->value(), 7500);
}

TEST(ImportView, DoesNothingOnceAWindowTookItAlong) {
    const SourceLanguageStrings strings;
    ImportView view(strings);
    {
        QWidget window;
        view.widget()->setParent(&window);
    }
    EXPECT_EQ(view.widget(), nullptr);
    view.startProgressAnimation();
    view.setDescription("late");
    view.setProgressText("late");
    view.setProgressValue(1);
}

}  // namespace
}  // namespace corvane
