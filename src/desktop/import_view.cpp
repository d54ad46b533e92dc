#include "desktop/import_view.h"

#include <QVBoxLayout>
#include <algorithm>
#include <chrono>
#include <cmath>

#include "desktop/calm_progress_bar.h"
#include "desktop/qt_text.h"

namespace corvane {

namespace {

/// The bar counts in hundredths of a per cent.
constexpr int stepsPerPercent = 100;
constexpr int widthInCharacters = 48;

/// Reports can come by the thousand in a second, and laying out a text costs more than storing a report.
constexpr std::chrono::milliseconds refreshInterval{33};

// The percentage is whatever a division gave, 0 of 0 included, and such a value has no int.
int barValue(double percentage) {
    if (std::isnan(percentage))
        return 0;
    return static_cast<int>(std::lround(std::clamp(percentage, 0.0, 100.0) * stepsPerPercent));
}

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
      percentage_(makeLabel("importPercentage", widget_.get())),
      refresh_(refreshInterval, [this] { showContent(); }) {
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
    descriptionText_ = text;
    contentChanged();
}

void ImportView::setProgressText(const std::string& text) {
    percentageText_ = text;
    contentChanged();
}

void ImportView::setProgressValue(double percentage) {
    percentageValue_ = percentage;
    contentChanged();
}

void ImportView::contentChanged() {
    if (widget() == nullptr)
        return;
    if (widget()->isVisible())
        refresh_.request();
    else
        showContent();  // a window gets its first size from it
}

void ImportView::showContent() {
    if (widget() == nullptr)
        return;
    description_->setText(toQString(descriptionText_));
    percentage_->setText(toQString(percentageText_));
    if (!percentageValue_)
        return;
    bar_->setUpdatesEnabled(false);  // the bar would paint each value at once
    bar_->setRange(0, 100 * stepsPerPercent);
    bar_->setValue(barValue(*percentageValue_));
    bar_->setUpdatesEnabled(true);
}

}  // namespace corvane
