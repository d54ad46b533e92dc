#pragma once

#include <string>

namespace corvane {

/// The content of the import window, as the toolkit holds it. Main thread only.
class ReportUpdateView {
  public:
    virtual ~ReportUpdateView() = default;

    virtual void startProgressAnimation() = 0;
    virtual void setDescription(const std::string& text) = 0;
    virtual void setProgressText(const std::string& text) = 0;
    /// From 0 to 100, fractions included; may be not-a-number or infinite.
    virtual void setProgressValue(double percentage) = 0;
};

/// What happens to the view's window.
class ReportUpdateViewEvents {
  public:
    virtual ~ReportUpdateViewEvents() = default;

    virtual void viewWillAppear() = 0;
    virtual void viewDidAppear() = 0;
};

}  // namespace corvane
