#pragma once

#include <string>

#include "platform/bundle.h"
#include "platform/localized_strings.h"

namespace corvane {

/// What the application is called and which version it is. A bundle that lacks an answer, or has one that is
/// no text, is fatal. Main thread only.
class QVApp {
  public:
    /// Both outlive the object.
    QVApp(const Bundle& mainBundle, const LocalizedStrings& strings)
        : mainBundle_(mainBundle), strings_(strings) {}

    std::string appName() const;
    std::string longAppName() const;
    /// The build version, the one that the update feed is compared with.
    std::string appVersion() const;

  private:
    std::string bundleText(const char* key) const;

    const Bundle& mainBundle_;
    const LocalizedStrings& strings_;
};

}  // namespace corvane
