#pragma once

#include <QMainWindow>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desktop/import_sheet.h"
#include "platform/localized_strings.h"
#include "settings_window/settings_window_view.h"

class QActionGroup;
class QStackedLayout;

namespace corvane {

/// What the menu's entries do.
struct MenuCommands {
    std::function<void()> checkForUpdates;
    std::function<void()> openReportsFolder;
    std::function<void()> showAbout;
    std::function<void()> quit;
};

/// The settings window: a toolbar of tabs over a content area, and the menu. Closing it hides it.
class SettingsWindow final : public QMainWindow, public SettingsWindowView {
  public:
    /// The events object must outlive the window.
    SettingsWindow(SettingsWindowEvents& events, MenuCommands commands, const LocalizedStrings& strings);
    ~SettingsWindow() override;

    std::size_t toolbarItemCount() const override;
    void removeToolbarItem(std::size_t index) override;
    void insertToolbarItem(const ToolbarItem& item, std::size_t index) override;
    void setSelectedToolbarItem(const std::string& identifier) override;

    /// The view must be a QtTabView.
    void addContent(TabView& view) override;
    void removeContent(TabView& view) override;

    void center() override;
    /// Comes to the front and takes the keyboard, but for a first time with Qt::WA_ShowWithoutActivating.
    void show() override;
    bool isVisible() const override { return QWidget::isVisible(); }

    /// The sheet must be an ImportSheet that was not begun before.
    void beginSheet(std::shared_ptr<SheetWindow> sheet) override;

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void buildMenu(MenuCommands commands, const LocalizedStrings& strings);
    void buildContentArea();
    void tabWasToggled(const std::string& identifier);
    QAction* toolbarAction(std::size_t index) const;

    SettingsWindowEvents& events_;
    QToolBar* toolbar_;
    QActionGroup* tabs_;
    QStackedLayout* contentLayout_ = nullptr;
    bool isMarking_ = false;                        ///< the mark is set from here, not by the user
    std::optional<std::string> toggledIdentifier_;  ///< of a tab whose toggling was not answered yet
    bool isToolbarInUse_ = false;  ///< who chooses tabs by keyboard in the toolbar stays there
    std::vector<std::shared_ptr<ImportSheet>> sheets_;  ///< in the order in which they were begun
};

}  // namespace corvane
