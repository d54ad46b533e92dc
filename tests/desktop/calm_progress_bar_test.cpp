#include "desktop/calm_progress_bar.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>
#include <memory>

#include "desktop/event_waiting.h"

namespace corvane {
namespace {

class CalmProgressBarTest : public testing::Test {
  protected:
    CalmProgressBarTest() {
        bar.setStyle(style.get());
        bar.setTextVisible(false);
        bar.resize(240, 20);
        bar.show();
    }

    QImage picture() { return bar.grab().toImage(); }
    void runToAndFro() { bar.setRange(0, 0); }

    const std::unique_ptr<QStyle> style{QStyleFactory::create("Fusion")};
    CalmProgressBar bar;
};

TEST_F(CalmProgressBarTest, LetsABlockRunToAndFroWhileItsRangeIsEmpty) {
    const QImage empty = picture();
    runToAndFro();
    const QImage begin = picture();
    EXPECT_NE(begin, empty);
    EXPECT_TRUE(waitUntil([&] { return picture() != begin; }));
    EXPECT_TRUE(waitUntil([&] { return picture() == begin; })) << "it comes back";
}

TEST_F(CalmProgressBarTest, ShowsItsValueOnceItHasARange) {
    bar.setRange(0, 100);
    bar.setValue(50);
    const QImage half = picture();
    runToAndFro();
    EXPECT_NE(picture(), half);
    bar.setRange(0, 100);
    bar.setValue(50);
    EXPECT_EQ(picture(), half);
}

TEST_F(CalmProgressBarTest, FollowsTheColoursWhileItRuns) {
    runToAndFro();
    const auto isRed = [](const QImage& image) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, image.height() / 2);
            if (colour.red() > 2 * colour.green() && colour.red() > 2 * colour.blue())
                return true;
        }
        return false;
    };
    EXPECT_FALSE(isRed(picture()));
    QPalette palette = bar.palette();
    palette.setColor(QPalette::Highlight, QColor(200, 0, 0));
    bar.setPalette(palette);
    EXPECT_TRUE(isRed(picture()));
}

TEST_F(CalmProgressBarTest, FollowsItsSizeWhileItRuns) {
    runToAndFro();
    picture();
    bar.resize(480, 20);
    CalmProgressBar wideFromTheStart;
    wideFromTheStart.setStyle(style.get());
    wideFromTheStart.setTextVisible(false);
    wideFromTheStart.setRange(0, 0);
    wideFromTheStart.resize(480, 20);
    EXPECT_EQ(picture(), wideFromTheStart.grab().toImage());
}

}  // namespace
}  // namespace corvane
