#pragma once

#include <QBasicTimer>
#include <QPixmap>
#include <QProgressBar>

namespace corvane {

/// A bar that, while its range is empty, lets a block run to and fro ten times a second. The toolkit's own
/// animation wakes up sixty times a second and draws everything anew, which would cost as much as the import
/// that it announces.
class CalmProgressBar final : public QProgressBar {
  public:
    using QProgressBar::QProgressBar;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    bool isBusy() const { return minimum() == 0 && maximum() == 0; }
    QPixmap picture(int progress);
    void paintBlock();

    QBasicTimer timer_;
    int frame_ = 0;
    QPixmap emptyPicture_;  ///< null when both have to be drawn
    QPixmap fullPicture_;
};

}  // namespace corvane
