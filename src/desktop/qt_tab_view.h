#pragma once

#include "desktop/widget_holder.h"
#include "settings_window/settings_window_view.h"

namespace corvane {

/// The widget of a tab's view. Every TabView of the desktop is one as well.
class QtTabView {
  public:
    /// Takes the widget over.
    explicit QtTabView(QWidget* widget) : widget_(widget) {}
    virtual ~QtTabView() = default;

    QtTabView(const QtTabView&) = delete;
    QtTabView& operator=(const QtTabView&) = delete;

    QWidget* widget() const { return widget_.get(); }

  private:
    WidgetHolder<QWidget> widget_;
};

/// A tab of which the logic asks nothing.
class QtPlainTabView final : public TabView, public QtTabView {
  public:
    using QtTabView::QtTabView;
};

}  // namespace corvane
