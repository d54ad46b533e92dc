#pragma once

#include <QDialog>
#include <QPointer>
#include <functional>
#include <memory>

#include "app/report_update_view_controller.h"
#include "settings_window/settings_window_view.h"

namespace corvane {

/// The import window. Keeps its controller alive; its dialog lends the controller's view.
class ImportSheet final : public SheetWindow {
  public:
    /// `content` is the widget of the controller's view.
    ImportSheet(std::shared_ptr<ReportUpdateViewController> controller, QWidget* content);
    ~ImportSheet() override;

    ImportSheet(const ImportSheet&) = delete;
    ImportSheet& operator=(const ImportSheet&) = delete;

    void setResizable(bool isResizable) override;
    bool endSheet() override;

    /// Shows the window over `parent`. `didEnd` is called once, when the sheet has ended, and may drop the
    /// sheet. A sheet is begun once in its life.
    void begin(QWidget& parent, std::function<void()> didEnd);

    /// In front of other windows of the program, without taking the keyboard.
    void raise();

    /// Takes the window off its parent without telling anybody: the parent goes away.
    void abandon();

  private:
    std::shared_ptr<ReportUpdateViewController> controller_;
    QPointer<QWidget> content_;
    std::unique_ptr<QDialog> dialog_;
    std::function<void()> didEnd_;
};

}  // namespace corvane
