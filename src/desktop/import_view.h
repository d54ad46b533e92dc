#pragma once

#include <QLabel>
#include <QProgressBar>
#include <optional>
#include <string>

#include "app/report_update_view.h"
#include "desktop/paced_action.h"
#include "desktop/widget_holder.h"
#include "platform/localized_strings.h"

namespace corvane {

/// The import window's content: what is done, a bar, and the percentage. While it is seen, all changes show
/// together thirty times a second. Does nothing once its window took it along.
class ImportView final : public ReportUpdateView {
  public:
    explicit ImportView(const LocalizedStrings& strings);

    void startProgressAnimation() override;
    void setDescription(const std::string& text) override;
    void setProgressText(const std::string& text) override;
    void setProgressValue(double percentage) override;

    /// Null once a window that had it is gone.
    QWidget* widget() const { return widget_.get(); }

  private:
    void contentChanged();
    void showContent();

    WidgetHolder<QWidget> widget_;
    QLabel* description_;
    QProgressBar* bar_;
    QLabel* percentage_;
    std::string descriptionText_;
    std::string percentageText_;
    std::optional<double> percentageValue_;  ///< absent until the first one
    PacedAction refresh_;
};

}  // namespace corvane
