#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "settings_window/settings_window_view.h"

namespace corvane::test {

/// The name under which a fake settings window knows a fake tab.
class Named {
  public:
    explicit Named(std::string name) : name_(std::move(name)) {}
    const std::string& name() const { return name_; }

  protected:
    virtual ~Named() = default;

  private:
    std::string name_;
};

class FakeTabView final : public TabView, public Named {
  public:
    using Named::Named;
};

/// A sheet that knows whether it is on a window.
class FakeSheetWindow : public SheetWindow {
  public:
    void setResizable(bool isResizable) override { isResizable_ = isResizable; }
    bool endSheet() override { return std::exchange(isOnWindow_, false); }

    void putOnWindow() { isOnWindow_ = true; }
    bool isOnWindow() const { return isOnWindow_; }
    bool isResizable() const { return isResizable_; }

  private:
    bool isResizable_ = true;
    bool isOnWindow_ = false;
};

/// A settings window in memory: keeps what is shown and plays the user's clicks.
class FakeSettingsWindow final : public SettingsWindowView {
  public:
    explicit FakeSettingsWindow(SettingsWindowEvents& events) : events_(events) {}

    std::size_t toolbarItemCount() const override { return items_.size(); }
    void removeToolbarItem(std::size_t index) override { items_.erase(items_.begin() + offset(index)); }
    void insertToolbarItem(const ToolbarItem& item, std::size_t index) override {
        items_.insert(items_.begin() + offset(index), item);
    }
    void setSelectedToolbarItem(const std::string& identifier) override { selectedItem_ = identifier; }

    void addContent(TabView& view) override {
        history_.push_back("add " + nameOf(view));
        content_.push_back(nameOf(view));
    }
    void removeContent(TabView& view) override {
        history_.push_back("remove " + nameOf(view));
        content_.erase(std::remove(content_.begin(), content_.end(), nameOf(view)), content_.end());
    }

    void center() override { history_.emplace_back("center"); }
    void show() override {
        history_.emplace_back("show");
        isVisible_ = true;
        events_.windowDidShow();
    }
    bool isVisible() const override { return isVisible_; }
    void beginSheet(std::shared_ptr<SheetWindow> sheet) override {
        std::static_pointer_cast<FakeSheetWindow>(sheet)->putOnWindow();
        sheets_.push_back(std::move(sheet));
    }

    void close() {
        events_.windowWillHide();
        isVisible_ = false;
    }
    void click(const std::string& identifier) { events_.toolbarItemClicked(identifier); }

    const std::vector<ToolbarItem>& items() const { return items_; }
    std::vector<std::string> labels() const {
        std::vector<std::string> labels;
        for (const ToolbarItem& item : items_)
            labels.push_back(item.label);
        return labels;
    }
    const std::string& selectedItem() const { return selectedItem_; }
    const std::vector<std::string>& content() const { return content_; }
    const std::vector<std::string>& history() const { return history_; }
    void clearHistory() { history_.clear(); }
    const std::vector<std::shared_ptr<SheetWindow>>& sheets() const { return sheets_; }

  private:
    static std::string nameOf(TabView& view) { return dynamic_cast<const Named&>(view).name(); }
    static std::ptrdiff_t offset(std::size_t index) { return static_cast<std::ptrdiff_t>(index); }

    SettingsWindowEvents& events_;
    std::vector<ToolbarItem> items_;
    std::string selectedItem_;
    std::vector<std::string> content_;
    std::vector<std::string> history_;
    std::vector<std::shared_ptr<SheetWindow>> sheets_;
    bool isVisible_ = false;
};

}  // namespace corvane::test
