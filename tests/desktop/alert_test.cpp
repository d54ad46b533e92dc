#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <functional>
#include <string>
#include <vector>

#include "desktop/event_waiting.h"
#include "desktop/qt_alerts.h"
#include "desktop/qt_main_queue.h"
#include "desktop/qt_text.h"
#include "platform/memory/source_language_strings.h"

namespace corvane {
namespace {

using testing::ElementsAre;

class AlertTest : public testing::Test {
  protected:
    /// Runs the alert and does the steps, one after the other, while it is open.
    AlertAnswer run(const Alert& alert, std::vector<std::function<void(QDialog&)>> steps) {
        steps.emplace_back([](QDialog& dialog) {
            wasLeftOpen = true;
            dialog.done(0);
        });
        wasLeftOpen = false;
        std::size_t next = 0;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (dialog != nullptr && dialog->isActiveWindow())
                steps.at(next++)(*dialog);
        });
        timer.start(0);
        return alerts.runModal(alert);
    }

    static std::function<void(QDialog&)> key(Qt::Key key) {
        return [key](QDialog& dialog) {
            QWidget* focus = QApplication::focusWidget();
            QTest::keyClick(focus != nullptr ? focus : &dialog, key);
        };
    }
    static std::function<void(QDialog&)> click(int button) {
        return [button](QDialog& dialog) {
            const QString name = QStringLiteral("alertButton%1").arg(button);
            QTest::mouseClick(dialog.findChild<QPushButton*>(name), Qt::LeftButton);
        };
    }
    static void close(QDialog& dialog) { dialog.close(); }

    static inline bool wasLeftOpen = false;
    SourceLanguageStrings strings;
    QtAlerts alerts{strings};
    const Alert question{.style = AlertStyle::Warning,
                         .messageText = "Question?",
                         .informativeText = {},
                         .buttons = {{"First"}, {"Second"}, {.title = "Stop", .isCancel = true}},
                         .accessory = {}};
    const Alert choice{.style = AlertStyle::Critical,
                       .messageText = "Choose",
                       .informativeText = {},
                       .buttons = {{"This"}, {"That"}},
                       .accessory = {}};
    const Alert message{.style = AlertStyle::Informational,
                        .messageText = "Message",
                        .informativeText = {},
                        .buttons = {},
                        .accessory = {}};
};

TEST_F(AlertTest, AnswersWithTheButtonsPosition) {
    EXPECT_EQ(run(question, {click(0)}).code, 1000);
    EXPECT_EQ(run(question, {click(1)}).code, 1001);
    EXPECT_EQ(run(question, {click(2)}).code, 1002);
}

TEST_F(AlertTest, TakesReturnForTheFirstButtonAndEscapeForTheCancellingOne) {
    EXPECT_EQ(run(question, {key(Qt::Key_Return)}).code, 1000);
    EXPECT_EQ(run(question, {key(Qt::Key_Enter)}).code, 1000);
    EXPECT_EQ(run(question, {key(Qt::Key_Escape)}).code, 1002);
    EXPECT_EQ(run(question, {close}).code, 1002);
    EXPECT_FALSE(wasLeftOpen);
}

TEST_F(AlertTest, StaysOpenAtEscapeAndCloseWithoutACancellingButton) {
    EXPECT_EQ(run(choice, {key(Qt::Key_Escape), close, click(1)}).code, 1001);
    EXPECT_FALSE(wasLeftOpen);
    run(choice, {key(Qt::Key_Escape), close});
    EXPECT_TRUE(wasLeftOpen);
}

TEST_F(AlertTest, HasOneButtonThatEverythingPressesWhenNoneIsGiven) {
    EXPECT_EQ(run(message, {[](QDialog& dialog) {
                      const auto buttons = dialog.findChildren<QPushButton*>();
                      ASSERT_EQ(buttons.size(), 1);
                      EXPECT_EQ(buttons.first()->text(), "OK");
                      QTest::keyClick(&dialog, Qt::Key_Escape);
                  }})
                  .code,
              1000);
    EXPECT_EQ(run(message, {close}).code, 1000);
    EXPECT_EQ(run(message, {key(Qt::Key_Return)}).code, 1000);
    EXPECT_FALSE(wasLeftOpen);
}

TEST_F(AlertTest, ReachesEveryButtonByTab) {
    EXPECT_EQ(run(choice, {key(Qt::Key_Tab), key(Qt::Key_Space)}).code, 1001);
    EXPECT_EQ(run(choice, {key(Qt::Key_Tab), key(Qt::Key_Return)}).code, 1001);
}

TEST_F(AlertTest, ShowsTextsAsTheyAreWithoutTakingThemForMarkup) {
    const std::string text = "two  spaces & <b>no bold</b>\n\n&amp; %1 \"quoted\" \xc3\xa4\xe6\xbc\xa2";
    Alert alert = question;
    alert.messageText = text;
    alert.informativeText = text;
    alert.buttons[1].title = "This & that";
    run(alert, {[&](QDialog& dialog) {
            EXPECT_EQ(toUtf8(dialog.findChild<QTextEdit*>("alertMessageText")->toPlainText()), text);
            EXPECT_EQ(toUtf8(dialog.findChild<QTextEdit*>("alertInformativeText")->toPlainText()), text);
            auto* button = dialog.findChild<QPushButton*>("alertButton1");
            EXPECT_EQ(button->text(), "This && that") << "the label's escape for a plain ampersand";
            EXPECT_EQ(button->accessibleName(), "This & that");
            button->click();
        }});
}

TEST_F(AlertTest, PutsItsButtonsFromLeftToRightInTheOrderGiven) {
    run(question, {[](QDialog& dialog) {
            std::vector<int> positions;
            for (int i = 0; i < 3; ++i)
                positions.push_back(
                    dialog.findChild<QPushButton*>(QStringLiteral("alertButton%1").arg(i))->x());
            EXPECT_LT(positions[0], positions[1]);
            EXPECT_LT(positions[1], positions[2]);
            EXPECT_TRUE(dialog.findChild<QPushButton*>("alertButton0")->isDefault());
            dialog.close();
        }});
}

TEST_F(AlertTest, BreaksWordsThatAreLongerThanALineAndScrollsLongTexts) {
    Alert alert = choice;
    alert.messageText = std::string(2000, 'W');
    for (int i = 0; i < 1000; ++i)
        alert.informativeText += "A line of the notes\n";
    run(alert, {[](QDialog& dialog) {
            const QSize screen = dialog.screen()->availableGeometry().size();
            EXPECT_LE(dialog.width(), screen.width());
            EXPECT_LE(dialog.height(), screen.height());
            auto* notes = dialog.findChild<QTextEdit*>("alertInformativeText");
            EXPECT_GE(notes->height(), notes->fontMetrics().height() * 3);
            EXPECT_EQ(notes->focusPolicy(), Qt::StrongFocus) << "scrolled by keyboard, too";
            dialog.findChild<QPushButton*>("alertButton0")->click();
        }});
}

TEST_F(AlertTest, HandsBackWhatWasTypedExactly) {
    Alert alert = question;
    alert.accessory = AlertTextField{.placeholder = "Vendor ID"};
    const auto type = [](QDialog& dialog) {
        auto* field = dialog.findChild<QLineEdit*>("alertTextField");
        EXPECT_EQ(field, QApplication::focusWidget());
        EXPECT_EQ(field->placeholderText(), "Vendor ID");
        EXPECT_EQ(field->accessibleName(), "Vendor ID");
        EXPECT_EQ(field->text(), "");
        QTest::keyClicks(field, " 777 ");
    };
    const AlertAnswer answer = run(alert, {type, key(Qt::Key_Return)});
    EXPECT_EQ(answer.code, 1000);
    EXPECT_EQ(answer.accessoryText, " 777 ");
    EXPECT_EQ(run(alert, {type, key(Qt::Key_Escape)}).code, 1002);
}

TEST_F(AlertTest, AnswersAsIfCancelledWhenTheProgramEnds) {
    std::vector<int> codes;
    QTimer::singleShot(0, [&] {
        codes.push_back(run(question, {[](QDialog&) { QCoreApplication::exit(); }}).code);
        codes.push_back(run(question, {}).code);
    });
    QCoreApplication::exec();
    EXPECT_THAT(codes, ElementsAre(1002, 1002));
    EXPECT_FALSE(wasLeftOpen);
}

TEST_F(AlertTest, ShowsNothingAnyMoreOnceItIsStopped) {
    alerts.stop();
    EXPECT_EQ(run(question, {}).code, 1002);
    EXPECT_EQ(run(message, {}).code, 1000);
    EXPECT_EQ(run(choice, {}).code, 1001);
    EXPECT_FALSE(wasLeftOpen);
}

TEST_F(AlertTest, HoldsTheMainQueueBackOnlyWhenOneOfItsTasksOpenedIt) {
    QtMainQueue queue;
    std::vector<std::string> events;
    queue.async([&] {
        run(message, {[](QDialog&) {}, [](QDialog&) {}, [](QDialog&) {}, click(0)});
        events.emplace_back("answered");
    });
    queue.async([&] { events.emplace_back("next task"); });
    EXPECT_TRUE(waitUntil([&] { return events.size() == 2; }));
    EXPECT_THAT(events, ElementsAre("answered", "next task"));

    events.clear();
    bool ranMeanwhile = false;
    queue.async([&] { ranMeanwhile = true; });
    alerts.setParentWindow([] { return nullptr; });
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [&] {
        if (auto* dialog = QApplication::activeModalWidget(); dialog != nullptr && ranMeanwhile)
            dialog->close();
    });
    answer.start(1);
    EXPECT_EQ(alerts.runModal(message).code, 1000);
    EXPECT_TRUE(ranMeanwhile);
}

}  // namespace
}  // namespace corvane
