#pragma once

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <functional>

namespace corvane {

/// Runs the event loop until the condition holds; false when it does not within the limit.
inline bool waitUntil(const std::function<bool()>& condition,
                      std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    QEventLoop loop;
    QTimer check;
    QObject::connect(&check, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.quit();
    });
    check.start(1);
    QTimer::singleShot(limit, &loop, &QEventLoop::quit);
    if (!condition())
        loop.exec();
    return condition();
}

}  // namespace corvane
