#pragma once

#include <QDialog>
#include <QLineEdit>
#include <optional>

#include "platform/alerts.h"

class QBoxLayout;

namespace corvane {

/// An alert as a dialog. Shows the alert's texts exactly; its buttons stand in the order given, the first is
/// the default. Escape and the close button answer with the button marked as cancel, or with the only one;
/// without either they do nothing.
class AlertDialog final : public QDialog {
  public:
    /// `alert` has at least one button.
    AlertDialog(const Alert& alert, QWidget* parent);

    /// Position of the button that was pressed; of the cancelling one, or else the last, when the program
    /// ended the dialog.
    std::size_t answer() const;
    /// Exactly as typed; empty without a text field.
    QString accessoryText() const;

    void reject() override;

  private:
    void addTexts(const Alert& alert, QBoxLayout& column);
    void addTextField(const AlertTextField& field, QBoxLayout& column);
    void addButtons(const Alert& alert, QBoxLayout& row);
    void press(std::size_t index);

    QLineEdit* textField_ = nullptr;
    std::optional<std::size_t> cancelIndex_;
    std::size_t lastIndex_;
    std::optional<std::size_t> answer_;
};

}  // namespace corvane
