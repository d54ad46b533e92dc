#pragma once

#include <QTextEdit>

namespace corvane {

/// Plain text to read: shown exactly as it is, spaces included, never taken for markup. Breaks lines between
/// words, and within a word that is longer than a line, so that nothing is cut off; can be selected and
/// copied. As high as its text needs at its width up to its maximum height, beyond that it scrolls.
class ReadOnlyText final : public QTextEdit {
  public:
    explicit ReadOnlyText(const QString& text, QWidget* parent = nullptr);

    /// The text is laid out at this width when the widget may choose.
    void setPreferredWidth(int width);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void applyPalette();
    int textWidth() const;

    int preferredWidth_ = 0;
};

}  // namespace corvane
