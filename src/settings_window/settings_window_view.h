#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace corvane {

/// The content of one tab, as the toolkit holds it.
class TabView {
  public:
    virtual ~TabView() = default;
};

/// A window that can be shown as a sheet on the settings window.
class SheetWindow {
  public:
    virtual ~SheetWindow() = default;

    virtual void setResizable(bool isResizable) = 0;

    /// Ends the sheet: takes the window off the window that it was begun on. False when it is on none.
    virtual bool endSheet() = 0;
};

/// What a tab's toolbar item shows.
struct ToolbarItem {
    std::string identifier;
    std::string label;
    std::string iconName;  ///< the platform's name of the image
};

/// The settings window as the toolkit holds it: a toolbar and a content area. What the user does with it
/// comes back through SettingsWindowEvents. Main thread only.
class SettingsWindowView {
  public:
    virtual ~SettingsWindowView() = default;

    virtual std::size_t toolbarItemCount() const = 0;
    virtual void removeToolbarItem(std::size_t index) = 0;
    virtual void insertToolbarItem(const ToolbarItem& item, std::size_t index) = 0;
    /// Marks the item as the chosen one; the mark of every other item goes.
    virtual void setSelectedToolbarItem(const std::string& identifier) = 0;

    /// Puts the tab's view into the content area, which it fills from then on whatever size the window gets.
    virtual void addContent(TabView& view) = 0;
    /// Takes the tab's view out of the content area; it stays alive.
    virtual void removeContent(TabView& view) = 0;

    virtual void center() = 0;
    virtual void show() = 0;
    virtual bool isVisible() const = 0;

    /// Shows the window at once as a modal sheet of this one, also while this one is hidden or minimised, and
    /// keeps it alive until its sheet has ended. Several sheets may be open at once.
    virtual void beginSheet(std::shared_ptr<SheetWindow> sheet) = 0;
};

/// What the user does with the settings window.
class SettingsWindowEvents {
  public:
    virtual ~SettingsWindowEvents() = default;

    /// A click on a toolbar item.
    virtual void toolbarItemClicked(const std::string& identifier) = 0;
    /// The window has come on screen, or is about to leave it. Minimising is neither, nor is the program's
    /// end.
    virtual void windowDidShow() = 0;
    virtual void windowWillHide() = 0;
};

}  // namespace corvane
