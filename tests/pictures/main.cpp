// Takes a picture of each window in each state that a user may see.
//   corvane_pictures [--dark] LOCALE_FOLDER PICTURE_FOLDER
#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QPalette>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStyleFactory>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <clocale>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "desktop/desktop_environment.h"
#include "desktop/event_waiting.h"
#include "desktop/named_images.h"
#include "desktop/qt_text.h"
#include "platform/system/gettext_strings.h"

namespace corvane {
namespace {

constexpr const char* longName =
    "The Very Long Name of a Publishing Company for Games, Tools and Everything Else, Limited";
constexpr const char* longAddress =
    "accounting.and.sales.reports.department@subsidiary.of.a.very.long.domain.example.com";

const QString usualFolder =
    QStringLiteral("/home/ada/.local/share/QX4ZT7M2P9.group.quessartolvinger.brindlecount/ToImport");
const QString longFolder = QStringLiteral(
    "/srv/home/a-folder-with-a-long-name/and-another-one-below-it/and-a-third-with-a-name/ada"
    "/.local/share/QX4ZT7M2P9.group.quessartolvinger.brindlecount/ToImport");

class Photographer {
  public:
    explicit Photographer(QDir folder) : folder_(std::move(folder)) {}

    /// All windows on screen, with nothing around them.
    void take(const QString& name) {
        settle();
        QRect area;
        for (const QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible())
                area |= window->frameGeometry();
        }
        QScreen* screen = QGuiApplication::primaryScreen();
        const QPixmap picture = screen->grabWindow(0, area.x(), area.y(), area.width(), area.height());
        const QString path = folder_.filePath(name + QStringLiteral(".png"));
        if (!picture.save(path))
            qFatal("cannot write %s", qPrintable(path));
        std::printf("%s\n", qPrintable(path));
    }

  private:
    static void settle() {
        QTest::qWait(250);  // the bar moves, and a caret blinks: no event says that all is drawn
    }

    const QDir folder_;
};

class Scenes {
  public:
    Scenes(LocalizedStrings& texts, Photographer& photographer)
        : texts_(texts), photographer_(photographer) {}

    void takeAll() {
        for (const char* prefix : {"empty", "three", "long"})
            takeTabs(prefix);
        takePrompt();
        takeRemovalAndReset();
        takeImport();
        takeSignInAlert();
        takeUpdateAlert();
    }

  private:
    struct Desktop : test::DesktopEnvironment {
        Desktop(LocalizedStrings& localizedTexts, QString folder)
            : DesktopEnvironment(localizedTexts, std::move(folder), CORVANE_VERSION) {}

        void start() {
            launch();
            window().move(40, 40);
            window().activateWindow();
            waitUntil([this] { return window().isActiveWindow(); });
        }
        void showTab(int number) {
            window().findChild<QToolBar*>("tabs")->actions().at(number - 1)->trigger();
            window().activateWindow();
            waitUntil([this] { return window().isActiveWindow(); });
        }
        void selectRow(int row) {
            auto* table = window().findChild<QListView*>("accounts");
            table->setCurrentIndex(table->model()->index(row, 0));
        }
    };

    std::unique_ptr<Desktop> desktopWith(const std::string& accounts) {
        auto desktop = std::make_unique<Desktop>(texts_, accounts == "long" ? longFolder : usualFolder);
        if (accounts != "empty")
            addThreeAccounts(*desktop);
        if (accounts == "long") {
            const ITunesAccountList list = desktop->settings.iTunesAccounts().value();
            list[1]->setName(longName);
            list[1]->setEmail(longAddress);
        }
        return desktop;
    }

    static void addThreeAccounts(Desktop& desktop) {
        desktop.addAccount("80012345")->setName("Lovelace Games");
        desktop.addAccount("80067890")->setName("Difference Tools");
        desktop.addAccount("80024680")->setName("Note G Publishing");
        const ITunesAccountList list = desktop.settings.iTunesAccounts().value();
        list[0]->setEmail("reports@lovelace.example");
        list[1]->setEmail("sales@difference.example");
        list[2]->setEmail("ada@note-g.example");
    }

    void takeTabs(const QString& prefix) {
        const auto desktop = desktopWith(prefix.toStdString());
        desktop->start();
        photographer_.take(prefix + "-general");
        desktop->showTab(2);
        if (prefix == "three")
            photographer_.take("three-accounts-none-selected");
        if (prefix != "empty")
            desktop->selectRow(1);
        photographer_.take(prefix + "-accounts");
        desktop->showTab(3);
        photographer_.take(prefix + "-advanced");
    }

    using Step = std::function<void(QWidget&)>;

    /// Takes the steps, each while an alert is open, and lets the action wait in it.
    static void duringAlerts(std::vector<Step> steps, const std::function<void()>& action) {
        std::size_t next = 0;
        bool isBusy = false;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            QWidget* alert = QApplication::activeModalWidget();
            if (isBusy || alert == nullptr || !alert->isActiveWindow())
                return;
            isBusy = true;
            steps.at(next++)(*alert);
            isBusy = false;
        });
        timer.start(50);
        action();
    }

    Step pictureThenPress(const QString& name, Qt::Key key, const QString& typed = {}) {
        return [this, name, key, typed](QWidget& alert) {
            photographer_.take(name);
            if (!typed.isEmpty())
                QTest::keyClicks(alert.findChild<QLineEdit*>("alertTextField"), typed);
            QTest::keyClick(QApplication::focusWidget(), key);
        };
    }

    void takePrompt() {
        const auto desktop = desktopWith("three");
        desktop->start();
        desktop->showTab(2);
        const auto add = [&] { desktop->window().findChild<QPushButton*>("addAccount")->click(); };
        duringAlerts({pictureThenPress("prompt", Qt::Key_Return, "81a3"),
                      pictureThenPress("prompt-not-numeric", Qt::Key_Return),
                      pictureThenPress("prompt-again", Qt::Key_Return, "80012345"),
                      pictureThenPress("prompt-not-unique", Qt::Key_Return),
                      pictureThenPress("prompt-once-more", Qt::Key_Return, "80013579")},
                     add);
        photographer_.take("added");
    }

    void takeRemovalAndReset() {
        const auto desktop = desktopWith("three");
        desktop->start();
        desktop->showTab(2);
        desktop->selectRow(1);
        duringAlerts({pictureThenPress("removal", Qt::Key_Escape)},
                     [&] { desktop->window().findChild<QPushButton*>("removeAccount")->click(); });
        desktop->showTab(3);
        duringAlerts({pictureThenPress("reset", Qt::Key_Escape)},
                     [&] { desktop->window().findChild<QPushButton*>("resetCache")->click(); });
    }

    /// One account for which eight reports are missing.
    std::unique_ptr<Desktop> desktopWithEightReports() {
        auto desktop = desktopWith("empty");
        desktop->addAccount("80012345");
        int missing = 0;
        desktop->fillCache([&missing](const std::string&) { return ++missing <= 9; });
        return desktop;
    }

    /// In hundredths of a per cent.
    static int shownProgress() {
        for (const QWidget* widget : QApplication::topLevelWidgets()) {
            const auto* bar = widget->findChild<QProgressBar*>("importProgress");
            if (bar != nullptr && widget->isVisible())
                return bar->maximum() == 0 ? 0 : bar->value();
        }
        return 0;
    }

    void takeImport() {
        const auto desktop = desktopWithEightReports();
        desktop->start();
        desktop->requestImport();
        photographer_.take("import-preparing");
        // Answers reach the window between two requests.
        bool isTaken = false;
        desktop->service = [&](const HttpRequest& request) {
            desktop->mainQueue.advance(std::chrono::seconds{10});
            QTest::qWait(50);  // longer than the window takes to show new values
            if (!isTaken && shownProgress() >= 3750) {
                isTaken = true;
                photographer_.take("import-37.5-percent");
            }
            return test::answerWithItsReport(request);
        };
        desktop->runToEnd();
        photographer_.take("import-after");
    }

    void takeSignInAlert() {
        const auto desktop = desktopWithEightReports();
        desktop->service = [](const HttpRequest&) { return test::answerWithMessage(test::signInMessage); };
        desktop->start();
        desktop->requestImport();
        duringAlerts({pictureThenPress("sign-in-alert", Qt::Key_Return)}, [&] { desktop->runToEnd(); });
    }

    void takeUpdateAlert() {
        const auto desktop = desktopWith("three");
        desktop->start();
        std::string notes;
        for (int line = 1; line <= 60; ++line)
            notes += "- Change number " + std::to_string(line) +
                     ": reports come sooner, and the window says more clearly what it is doing.\n";
        duringAlerts({pictureThenPress("update-alert", Qt::Key_Escape)}, [&] {
            desktop->updateCheck.parsedUpdateFile("2.0", "Faster, and easier to read.",
                                                  "https://example.com/");
        });
        duringAlerts({pictureThenPress("update-alert-with-long-notes", Qt::Key_Escape)},
                     [&] { desktop->updateCheck.parsedUpdateFile("2.0", notes, "https://example.com/"); });
    }

    LocalizedStrings& texts_;
    Photographer& photographer_;
};

QPalette darkPalette() {
    const QColor window(45, 45, 48);
    const QColor base(30, 30, 32);
    const QColor text(236, 236, 236);
    QPalette palette(window, window);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::Highlight, QColor(42, 110, 190));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(160, 160, 160));
    palette.setColor(QPalette::Link, QColor(90, 160, 240));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(140, 140, 140));
    return palette;
}

}  // namespace
}  // namespace corvane

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    std::setlocale(LC_ALL, "");
    QApplication::setApplicationDisplayName("Corvane");
    QApplication::setWindowIcon(corvane::programIcon());
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QStringList arguments = QApplication::arguments().mid(1);
    if (arguments.removeAll("--dark") > 0)
        QApplication::setPalette(corvane::darkPalette());
    if (arguments.size() != 2 || !QDir().mkpath(arguments[1])) {
        std::fprintf(stderr, "usage: corvane_pictures [--dark] LOCALE_FOLDER PICTURE_FOLDER\n");
        return 2;
    }
    corvane::GettextStrings texts(arguments[0].toStdString());
    corvane::Photographer photographer{QDir(arguments[1])};
    corvane::Scenes(texts, photographer).takeAll();
    return 0;
}
