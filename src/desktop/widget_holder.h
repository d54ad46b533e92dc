#pragma once

#include <QPointer>
#include <QThread>
#include <QWidget>

namespace corvane {

/// Owns a widget that is lent to windows: a window that is destroyed while it has the widget takes it along,
/// and the holder is empty then.
template <typename Widget>
class WidgetHolder {
  public:
    explicit WidgetHolder(Widget* widget) : widget_(widget) {}

    WidgetHolder(const WidgetHolder&) = delete;
    WidgetHolder& operator=(const WidgetHolder&) = delete;

    ~WidgetHolder() {
        if (widget_.isNull())
            return;
        // The last owner of a view may be a job that ends on its own thread.
        if (widget_->thread() == QThread::currentThread())
            delete widget_.data();
        else
            widget_->deleteLater();
    }

    /// Null when the widget is gone.
    Widget* get() const { return widget_.data(); }

  private:
    QPointer<Widget> widget_;
};

}  // namespace corvane
