#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/app_delegate.h"
#include "app/interface_files.h"
#include "app/report_update_view_controller.h"
#include "platform/memory/in_memory_bundle.h"
#include "platform/memory/in_memory_distributed_notification_center.h"
#include "platform/memory/recording_application.h"
#include "platform/memory/recording_workspace.h"
#include "support/engine_environment.h"
#include "support/fake_accounts_view.h"
#include "support/fake_preferences_view.h"
#include "support/fake_settings_window.h"

namespace corvane::test {

/// Keeps what the import window shows, and every text that it showed before.
class FakeReportUpdateView final : public ReportUpdateView {
  public:
    void startProgressAnimation() override { isAnimating = true; }
    void setDescription(const std::string& text) override { descriptions.push_back(text); }
    void setProgressText(const std::string& text) override { progressTexts.push_back(text); }
    void setProgressValue(double percentage) override { progressValues.push_back(percentage); }

    bool isAnimating = false;
    std::vector<std::string> descriptions;
    std::vector<std::string> progressTexts;
    std::vector<double> progressValues;
};

/// An import window that keeps its controller alive, as the toolkit's does.
class FakeImportWindow final : public FakeSheetWindow {
  public:
    explicit FakeImportWindow(std::shared_ptr<ReportUpdateViewController> controller)
        : controller_(std::move(controller)) {}

    ReportUpdateViewController& controller() { return *controller_; }
    FakeReportUpdateView& view() { return dynamic_cast<FakeReportUpdateView&>(*controller_->view()); }

    /// What the toolkit tells when the window comes on screen.
    void appear() {
        controller_->viewWillAppear();
        controller_->viewDidAppear();
    }

  private:
    std::shared_ptr<ReportUpdateViewController> controller_;
};

/// Makes fakes, and leaves out what a test lists as missing.
class FakeInterfaceFiles final : public InterfaceFiles {
  public:
    std::unique_ptr<TabView> loadGeneralView() override { return make<FakeTabView>("General"); }
    std::unique_ptr<AccountsView> loadAccountsView() override { return make<FakeAccountsView>("Accounts"); }
    std::unique_ptr<PreferencesView> loadPreferencesView() override {
        return make<FakePreferencesView>("Advanced");
    }

    std::unique_ptr<SettingsWindowView> loadSettingsWindow(SettingsWindowEvents& events) override {
        if (missing == "SettingsWindow")
            return nullptr;
        auto window = std::make_unique<FakeSettingsWindow>(events);
        settingsWindow = window.get();
        return window;
    }
    std::unique_ptr<ReportUpdateView> loadReportUpdateView() override {
        return missing == "ReportUpdateView" ? nullptr : std::make_unique<FakeReportUpdateView>();
    }
    std::shared_ptr<SheetWindow> makeSheetWindow(
        std::shared_ptr<ReportUpdateViewController> controller) override {
        importWindows.push_back(std::make_shared<FakeImportWindow>(std::move(controller)));
        return importWindows.back();
    }

    std::string missing;
    FakeSettingsWindow* settingsWindow = nullptr;
    std::vector<std::shared_ptr<FakeImportWindow>> importWindows;

  private:
    template <typename View>
    std::unique_ptr<View> make(const std::string& name) const {
        return missing == name ? nullptr : std::make_unique<View>(name);
    }
};

/// The program without its toolkit.
struct AppEnvironment : EngineEnvironment {
    using EngineEnvironment::EngineEnvironment;

    NotificationCenter notificationCenter;
    InMemoryDistributedNotificationCenter distributedCenter;
    RecordingApplication application;
    FakeInterfaceFiles interfaceFiles;
    ReportUpdateViewController::Collaborators importWindow{
        manager, files, mainQueue, notificationCenter, distributedCenter, application, strings, log};
    std::function<HttpAnswer(const HttpRequest&)> updateFeed = [](const HttpRequest& request) {
        return HttpAnswer{.response = HttpResponse{.statusCode = 404, .url = request.url, .headers = {}},
                          .body = Bytes{},
                          .errorDescription = {}};
    };
    ScriptedHttpClient updateClient{[this](const HttpRequest& request) { return updateFeed(request); }};
    InMemoryBundle bundle{InMemoryBundle::Information{{bundleNameKey, "Corvane"}, {bundleVersionKey, "1.1"}}};
    RecordingWorkspace workspace;
    QVApp metadata{bundle, strings};
    UpdateCheck updateCheck{{"updates.example:8080", updateClient, backgroundQueue, mainQueue, metadata,
                             alerts, strings, workspace}};
    AppDelegate delegate{{settings, interfaceFiles, alerts, updateCheck, importWindow}};

    /// A host application's request.
    void requestImport(decltype(DistributedNotification::object) object = {}) {
        distributedCenter.deliver({.name = "kNotificationCorvaneReloadData", .object = std::move(object)});
    }
};

}  // namespace corvane::test
