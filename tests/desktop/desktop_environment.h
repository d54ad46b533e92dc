#pragma once

#include <memory>
#include <string>
#include <utility>

#include "app/app_delegate.h"
#include "desktop/qt_alerts.h"
#include "desktop/qt_interface_files.h"
#include "platform/memory/in_memory_bundle.h"
#include "platform/memory/in_memory_distributed_notification_center.h"
#include "platform/memory/recording_application.h"
#include "platform/memory/recording_workspace.h"
#include "support/engine_environment.h"

namespace corvane::test {

/// The real windows, alerts and controllers over an engine in memory. Nothing is shown before `launch`.
struct DesktopEnvironment : EngineEnvironment {
    /// The texts outlive the environment.
    explicit DesktopEnvironment(LocalizedStrings& localizedTexts,
                                QString folder = QStringLiteral("/home/ada/reports"),
                                std::string programVersion = "1.2.3")
        : texts(localizedTexts), reportsFolder(std::move(folder)), version(std::move(programVersion)) {
        windowAlerts.setParentWindow([this] { return interfaceFiles.settingsWindow(); });
    }
    ~DesktopEnvironment() { mainQueue.runDueTasks(); }

    DesktopEnvironment(const DesktopEnvironment&) = delete;
    DesktopEnvironment& operator=(const DesktopEnvironment&) = delete;

    void launch() { delegate.applicationDidFinishLaunching(); }
    void requestImport() {
        distributedCenter.deliver({.name = "kNotificationCorvaneReloadData", .object = {}});
    }
    SettingsWindow& window() {
        return dynamic_cast<SettingsWindow&>(*delegate.settingsWindowController()->window());
    }

    LocalizedStrings& texts;
    const QString reportsFolder;
    const std::string version;
    NotificationCenter notificationCenter;
    InMemoryDistributedNotificationCenter distributedCenter;
    RecordingApplication application;
    RecordingWorkspace workspace;
    QtAlerts windowAlerts{texts};
    ReportUpdateManager windowManager{{settings, connection, files, clock, windowAlerts, texts}};
    QtInterfaceFiles interfaceFiles{
        texts,
        {"Corvane", QString::fromStdString(version), reportsFolder},
        {.checkForUpdates = [this] { updateCheck.checkForUpdates(); },
         .openReportsFolder = [] {},
         .showAbout =
             [this] {
                 windowAlerts.runModal(
                     {.messageText = "About", .informativeText = {}, .buttons = {}, .accessory = {}});
             },
         .quit = [this] { application.terminate(); }}};
    ReportUpdateViewController::Collaborators importWindow{
        windowManager, files, mainQueue, notificationCenter, distributedCenter, application, texts, log};
    ScriptedHttpClient updateClient{[](const HttpRequest&) { return answerWithTransportFailure(); }};
    InMemoryBundle bundle{
        InMemoryBundle::Information{{bundleNameKey, "Corvane"}, {bundleVersionKey, version}}};
    QVApp metadata{bundle, texts};
    UpdateCheck updateCheck{{"updates.example", updateClient, backgroundQueue, mainQueue, metadata,
                             windowAlerts, texts, workspace}};
    AppDelegate delegate{{settings, interfaceFiles, windowAlerts, updateCheck, importWindow}};
};

}  // namespace corvane::test
