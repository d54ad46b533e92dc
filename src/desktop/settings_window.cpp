#include "desktop/settings_window.h"

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QStackedLayout>
#include <QToolBar>
#include <algorithm>
#include <utility>

#include "desktop/named_images.h"
#include "desktop/qt_tab_view.h"
#include "desktop/qt_text.h"

namespace corvane {

namespace {

/// Room for a table beside the fields of one of its rows.
constexpr QSize initialSize{760, 540};
constexpr QSize smallestContentSize{480, 300};

}  // namespace

SettingsWindow::SettingsWindow(SettingsWindowEvents& events, MenuCommands commands,
                               const LocalizedStrings& strings)
    : events_(events), toolbar_(new QToolBar(this)), tabs_(new QActionGroup(this)) {
    setObjectName("settingsWindow");
    setWindowTitle(QGuiApplication::applicationDisplayName());
    setContextMenuPolicy(Qt::NoContextMenu);

    toolbar_->setObjectName("tabs");
    toolbar_->setAccessibleName(toQString(strings.localizedString("Tabs", "Settings Toolbar")));
    toolbar_->setMovable(false);
    toolbar_->setFloatable(false);
    toolbar_->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    toolbar_->setIconSize({32, 32});
    addToolBar(toolbar_);
    tabs_->setExclusive(true);

    buildMenu(std::move(commands), strings);
    buildContentArea();
}

SettingsWindow::~SettingsWindow() {
    for (const auto& sheet : sheets_)
        sheet->abandon();
}

void SettingsWindow::buildMenu(MenuCommands commands, const LocalizedStrings& strings) {
    const auto addAction = [&](QMenu& menu, const char* name, const std::string& text,
                               std::function<void()> command) {
        QAction* action = menu.addAction(toQString(text));
        action->setObjectName(name);
        action->setMenuRole(QAction::NoRole);
        connect(action, &QAction::triggered, this, [command = std::move(command)] { command(); });
        return action;
    };

    menuBar()->setAccessibleName(toQString(strings.localizedString("Menu", "Main menu")));
    QMenu& program = *menuBar()->addMenu(toQString(strings.localizedString("&File", "Main menu")));
    addAction(program, "openReportsFolder", strings.localizedString("Open &Folder of Reports", "Main menu"),
              std::move(commands.openReportsFolder));
    program.addSeparator();
    QAction* quit =
        addAction(program, "quit", strings.localizedString("&Quit", "Main menu"), std::move(commands.quit));
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setShortcutContext(Qt::ApplicationShortcut);

    QMenu& help = *menuBar()->addMenu(toQString(strings.localizedString("&Help", "Main menu")));
    addAction(help, "checkForUpdates", strings.localizedString("&Check for Updates", "Main menu"),
              std::move(commands.checkForUpdates));
    addAction(help, "about", strings.localizedString("&About", "Main menu"), std::move(commands.showAbout));
}

void SettingsWindow::buildContentArea() {
    auto* contentArea = new QWidget(this);
    contentArea->setObjectName("contentArea");
    contentArea->setMinimumSize(smallestContentSize);
    // All views that were put in are there, one on top of the other, the latest in front.
    contentLayout_ = new QStackedLayout(contentArea);
    contentLayout_->setStackingMode(QStackedLayout::StackAll);
    setCentralWidget(contentArea);
    resize(initialSize);
}

QAction* SettingsWindow::toolbarAction(std::size_t index) const {
    return toolbar_->actions().value(static_cast<qsizetype>(index));
}

std::size_t SettingsWindow::toolbarItemCount() const {
    return static_cast<std::size_t>(toolbar_->actions().size());
}

void SettingsWindow::removeToolbarItem(std::size_t index) {
    QAction* action = toolbarAction(index);
    if (action == nullptr)
        return;
    toolbar_->removeAction(action);
    tabs_->removeAction(action);
    action->deleteLater();  // it may be the one whose click is being handled
}

void SettingsWindow::insertToolbarItem(const ToolbarItem& item, std::size_t index) {
    auto* action = new QAction(namedImage(item.iconName), withoutMnemonic(item.label), toolbar_);
    action->setObjectName(toQString(item.identifier));
    action->setToolTip(toQString(item.label));
    action->setData(toQString(item.identifier));
    action->setCheckable(true);
    action->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + static_cast<int>(index))));
    tabs_->addAction(action);
    connect(action, &QAction::triggered, this, [this, identifier = item.identifier] {
        toggledIdentifier_.reset();
        events_.toolbarItemClicked(identifier);
    });
    connect(action, &QAction::toggled, this, [this, identifier = item.identifier](bool isChecked) {
        if (isChecked && !isMarking_)
            tabWasToggled(identifier);
    });
    toolbar_->insertAction(toolbarAction(index), action);
    QWidget* button = toolbar_->widgetForAction(action);
    button->setObjectName(toQString(item.identifier));
    button->setFocusPolicy(Qt::TabFocus);
    button->setAccessibleName(toQString(item.label));
}

// Assistive technology only toggles, where a click is a trigger right after it.
void SettingsWindow::tabWasToggled(const std::string& identifier) {
    toggledIdentifier_ = identifier;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (const auto toggled = std::exchange(toggledIdentifier_, std::nullopt))
                events_.toolbarItemClicked(*toggled);
        },
        Qt::QueuedConnection);
}

void SettingsWindow::setSelectedToolbarItem(const std::string& identifier) {
    const QString wanted = toQString(identifier);
    const QList<QAction*> actions = toolbar_->actions();
    const auto found = std::find_if(actions.begin(), actions.end(), [&](const QAction* action) {
        return action->data().toString() == wanted;
    });
    if (found == actions.end())
        return;
    isMarking_ = true;
    (*found)->setChecked(true);
    isMarking_ = false;
}

void SettingsWindow::addContent(TabView& view) {
    QWidget* widget = dynamic_cast<QtTabView&>(view).widget();
    contentLayout_->addWidget(widget);
    contentLayout_->setCurrentWidget(widget);
    widget->show();
    if (!isToolbarInUse_)
        widget->setFocus();
}

void SettingsWindow::removeContent(TabView& view) {
    QWidget* widget = dynamic_cast<QtTabView&>(view).widget();
    // Asked before the keyboard moves on from the view that goes.
    const QWidget* focus = focusWidget();
    isToolbarInUse_ = focus != nullptr && toolbar_->isAncestorOf(focus);
    contentLayout_->removeWidget(widget);
    widget->setParent(nullptr);
}

void SettingsWindow::center() {
    const QRect available = screen()->availableGeometry();
    resize(size().boundedTo(available.size()));
    move(available.center() - rect().center());
}

void SettingsWindow::show() {
    const bool wasVisible = isVisible();
    if (isMinimized())
        setWindowState(windowState() & ~Qt::WindowMinimized);
    QMainWindow::show();
    if (!testAttribute(Qt::WA_ShowWithoutActivating)) {
        raise();
        activateWindow();
    }
    setAttribute(Qt::WA_ShowWithoutActivating, false);
    for (const auto& sheet : sheets_)
        sheet->raise();
    if (!wasVisible)
        events_.windowDidShow();
}

void SettingsWindow::beginSheet(std::shared_ptr<SheetWindow> sheet) {
    // A desktop hides the dialogs of a minimised window along with it.
    if (isVisible() && isMinimized())
        setWindowState(windowState() & ~Qt::WindowMinimized);
    const auto importSheet = std::static_pointer_cast<ImportSheet>(std::move(sheet));
    sheets_.push_back(importSheet);
    importSheet->begin(*this, [this, ended = importSheet.get()] {
        std::erase_if(sheets_, [ended](const auto& begun) { return begun.get() == ended; });
    });
}

void SettingsWindow::closeEvent(QCloseEvent* event) {
    if (isVisible())
        events_.windowWillHide();
    event->accept();
}

}  // namespace corvane
