#pragma once

#include <QApplication>
#include <QDialog>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <QWindow>
#include <functional>
#include <string>
#include <vector>

#include "desktop/event_waiting.h"

namespace corvane::test {

// Keys and clicks arrive as from the window system: at the window, which finds out for whom they are.

inline QWindow& windowWithFocus() {
    if (!waitUntil([] { return QApplication::focusWindow() != nullptr; }))
        qFatal("no window has the keyboard");
    return *QApplication::focusWindow();
}

inline void pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(&windowWithFocus(), key, modifiers);
}

inline void typeText(const std::string& ascii) {
    for (const char character : ascii)
        QTest::keyClick(&windowWithFocus(), character);
}

inline void clickAt(const QWidget& widget, QPoint position,
                    Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWidget* window = widget.window();
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, modifiers, widget.mapTo(window, position));
}

inline void clickOn(const QWidget& widget) {
    clickAt(widget, widget.rect().center());
}

/// Steps that are taken one after the other, each once an alert has the keyboard, while something else waits
/// in an alert's event loop.
class AlertSteps {
  public:
    using Step = std::function<void(QDialog&)>;

    explicit AlertSteps(std::vector<Step> steps) : steps_(std::move(steps)) {
        QObject::connect(&timer_, &QTimer::timeout, [this] { takeStep(); });
        timer_.start(0);
    }

    /// Every step was taken, and no alert was left without one.
    bool wereAllTaken() const { return next_ == steps_.size() && !isStuck_; }

  private:
    void takeStep() {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || dialog->objectName() != "alert" || !dialog->isActiveWindow())
            return;
        if (next_ < steps_.size()) {
            steps_[next_++](*dialog);
            return;
        }
        isStuck_ = true;
        dialog->done(0);
    }

    const std::vector<Step> steps_;
    std::size_t next_ = 0;
    bool isStuck_ = false;
    QTimer timer_;
};

}  // namespace corvane::test
