// Linked into a program, ends it as soon as its first window has been painted and handed to the screen.

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimer>
#include <QWidget>
#include <cstdlib>

namespace {

class FirstWindowObserver final : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* const widget = qobject_cast<QWidget*>(watched);
        if (event->type() == QEvent::Paint && widget != nullptr && widget->isWindow())
            // What is painted reaches the screen before the loop comes to a timer.
            QTimer::singleShot(0, this, [] { std::_Exit(EXIT_SUCCESS); });
        return false;
    }
};

void observe() {
    QCoreApplication* const application = QCoreApplication::instance();
    application->installEventFilter(new FirstWindowObserver(application));
}

}  // namespace

Q_COREAPP_STARTUP_FUNCTION(observe)
