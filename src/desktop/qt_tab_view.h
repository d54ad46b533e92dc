#pragma once

#include "desktop/widget_holder.h"
#include "settings_window/settings_window_view.h"

namespace corvane {

/// A tab's content as a widget.
class QtTabView : public TabView {
  public:
    /// Takes the widget over.
    explicit QtTabView(QWidget* widget) : widget_(widget) {}

    QWidget* widget() const { return widget_.get(); }

  private:
    WidgetHolder<QWidget> widget_;
};

}  // namespace corvane
