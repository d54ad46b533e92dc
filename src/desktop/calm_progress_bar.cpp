#include "desktop/calm_progress_bar.h"

#include <QPainter>
#include <QStyleOptionProgressBar>
#include <QStylePainter>
#include <QTimerEvent>

namespace corvane {

namespace {

constexpr int frameInterval = 100;  // milliseconds
constexpr int framesAcross = 12;
constexpr int blocksInBar = 4;

}  // namespace

void CalmProgressBar::paintEvent(QPaintEvent* event) {
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

void CalmProgressBar::timerEvent(QTimerEvent* event) {
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

void CalmProgressBar::resizeEvent(QResizeEvent* event) {
    QProgressBar::resizeEvent(event);
    emptyPicture_ = {};
}

// Colours, style, whether the window is the active one.
void CalmProgressBar::changeEvent(QEvent* event) {
    QProgressBar::changeEvent(event);
    emptyPicture_ = {};
}

/// What the style draws for 0 of 1, or 1 of 1.
QPixmap CalmProgressBar::picture(int progress) {
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
void CalmProgressBar::paintBlock() {
    const int width = this->width() / blocksInBar;
    const int step = frame_ < framesAcross ? frame_ : 2 * framesAcross - frame_;
    QPainter painter(this);
    painter.drawPixmap(0, 0, emptyPicture_);
    painter.setClipRect((this->width() - width) * step / framesAcross, 0, width, height());
    painter.drawPixmap(0, 0, fullPicture_);
}

}  // namespace corvane
