#include "desktop/import_view.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "desktop/qt_text.h"

namespace corvane {

namespace {

/// The bar counts in hundredths of a per cent.
constexpr int stepsPerPercent = 100;
constexpr int widthInCharacters = 48;

// The percentage is whatever a division gave, 0 of 0 included, and such a value has no int.
int barValue(double percentage) {
    if (std::isnan(percentage))
        return 0;
    return static_cast<int>(std::lround(std::clamp(percentage, 0.0, 100.0) * stepsPerPercent));
}

/// A bar that runs to and fro is painted ten times a second instead of thirty: the painting would cost more
/// than the import that it announces.
class CalmProgressBar final : public QProgressBar {
  public:
    using QProgressBar::QProgressBar;

    bool event(QEvent* event) override {
        if (event->type() != QEvent::StyleAnimationUpdate)
            return QProgressBar::event(event);
        event->accept();  // or the animation ends
        if (!sinceFrame_.isValid() || sinceFrame_.hasExpired(frameInterval)) {
            sinceFrame_.start();
            update();
        }
        return true;
    }

  private:
    static constexpr qint64 frameInterval = 90;  // milliseconds

    QElapsedTimer sinceFrame_;
};

QLabel* makeLabel(const char* name, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

}  // namespace

ImportView::ImportView(const LocalizedStrings& strings)
    : widget_(new QWidget),
      description_(makeLabel("importDescription", widget_.get())),
      bar_(new CalmProgressBar(widget_.get())),
      percentage_(makeLabel("importPercentage", widget_.get())) {
    widget_.get()->setObjectName("importView");
    bar_->setObjectName("importProgress");
    bar_->setAccessibleName(toQString(strings.localizedString("Import progress", "Import window")));
    bar_->setTextVisible(false);
    bar_->setMinimumWidth(bar_->fontMetrics().averageCharWidth() * widthInCharacters);

    auto* column = new QVBoxLayout(widget_.get());
    column->addWidget(description_);
    column->addWidget(bar_);
    column->addWidget(percentage_);
}

// The bar runs to and fro until the first value comes.
void ImportView::startProgressAnimation() {
    if (widget() != nullptr)
        bar_->setRange(0, 0);
}

void ImportView::setDescription(const std::string& text) {
    if (widget() != nullptr)
        description_->setText(toQString(text));
}

void ImportView::setProgressText(const std::string& text) {
    if (widget() != nullptr)
        percentage_->setText(toQString(text));
}

void ImportView::setProgressValue(double percentage) {
    if (widget() == nullptr)
        return;
    bar_->setRange(0, 100 * stepsPerPercent);
    bar_->setValue(barValue(percentage));
}

}  // namespace corvane
