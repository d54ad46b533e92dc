#pragma once

#include <QCoreApplication>
#include <chrono>

#include "desktop/end_deadline.h"
#include "desktop/qt_alerts.h"
#include "desktop/qt_main_queue.h"
#include "platform/application.h"

namespace corvane {

/// Ends the program by leaving the event loops.
class QtApplication final : public Application {
  public:
    /// All must outlive the application. The deadline runs from the first request to end.
    QtApplication(QtMainQueue& mainQueue, QtAlerts& alerts, EndDeadline& deadline,
                  std::chrono::milliseconds limit)
        : mainQueue_(mainQueue), alerts_(alerts), deadline_(deadline), limit_(limit) {}

    void terminate() override {
        deadline_.start(limit_);
        mainQueue_.stop();
        alerts_.stop();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [] { QCoreApplication::exit(0); }, Qt::QueuedConnection);
    }

  private:
    QtMainQueue& mainQueue_;
    QtAlerts& alerts_;
    EndDeadline& deadline_;
    const std::chrono::milliseconds limit_;
};

}  // namespace corvane
