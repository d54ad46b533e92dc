#include "desktop/import_view.h"

#include <QBasicTimer>
#include <QPainter>
#include <QPixmap>
#include <QStyleOptionProgressBar>
#include <QStylePainter>
#include <QTimerEvent>
#include <QVBoxLayout>
#include <algorithm>
#include <chrono>
#include <cmath>

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

/// A bar that, while its range is empty, lets a block run to and fro ten times a second. The toolkit's own
/// animation wakes up sixty times a second and draws everything anew, which would cost as much as the import
/// that it announces.
class CalmProgressBar final : public QProgressBar {
  public:
    using QProgressBar::QProgressBar;

  protected:
    void paintEvent(QPaintEvent* event) override {
        if (!isBusy()) {
            QProgressBar::paintEvent(event);
            return;
        }
        if (!timer_.isActive())
            timer_.start(frameInterval, Qt::CoarseTimer, this);
        if (emptyPicture_.isNull() || emptyPicture_.devicePixelRatio() != devicePixelRatioF()) {
            emptyPicture_ = picture(0);
            fullPicture_ = picture(1);
        }
        paintBlock();
    }

    void timerEvent(QTimerEvent* event) override {
        if (event->timerId() != timer_.timerId()) {
            QProgressBar::timerEvent(event);
            return;
        }
        if (!isBusy() || !isVisible()) {
            timer_.stop();
            return;
        }
        frame_ = (frame_ + 1) % (2 * framesAcross);
        update();
    }

    void resizeEvent(QResizeEvent* event) override {
        QProgressBar::resizeEvent(event);
        emptyPicture_ = {};
    }

    /// Colours, style, the window's activity.
    void changeEvent(QEvent* event) override {
        QProgressBar::changeEvent(event);
        emptyPicture_ = {};
    }

  private:
    static constexpr int frameInterval = 100;  // milliseconds
    static constexpr int framesAcross = 12;
    static constexpr int blocksInBar = 4;

    bool isBusy() const { return minimum() == 0 && maximum() == 0; }

    /// What the style draws for 0 of 1, or 1 of 1.
    QPixmap picture(int progress) {
        QPixmap pixmap(size() * devicePixelRatioF());
        pixmap.setDevicePixelRatio(devicePixelRatioF());
        pixmap.fill(Qt::transparent);
        QStyleOptionProgressBar bar;
        initStyleOption(&bar);
        bar.maximum = 1;
        bar.progress = progress;
        QStylePainter(&pixmap, this).drawControl(QStyle::CE_ProgressBar, bar);
        return pixmap;
    }

    /// An empty bar, and a full one of which only the block is seen.
    void paintBlock() {
        const int width = this->width() / blocksInBar;
        const int step = frame_ < framesAcross ? frame_ : 2 * framesAcross - frame_;
        QPainter painter(this);
        painter.drawPixmap(0, 0, emptyPicture_);
        painter.setClipRect((this->width() - width) * step / framesAcross, 0, width, height());
        painter.drawPixmap(0, 0, fullPicture_);
    }

    QBasicTimer timer_;
    int frame_ = 0;
    QPixmap emptyPicture_;  ///< null when both have to be drawn
    QPixmap fullPicture_;
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
