#include "desktop/accounts_tab.h"

#include <QApplication>
#include <QFormLayout>
#include <QGraphicsOpacityEffect>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QShortcut>
#include <QVBoxLayout>
#include <limits>

#include "desktop/account_cell_delegate.h"
#include "desktop/qt_text.h"

namespace corvane {

namespace {

constexpr int smallestTableWidthInCharacters = 22;
constexpr int smallestFieldWidthInCharacters = 16;

constexpr AccountField editableFields[] = {AccountField::Name, AccountField::Email, AccountField::Password};

/// Looks like text on the window, as nobody can write in it.
void blendIntoWindow(QLineEdit& edit) {
    QPalette palette;
    palette.setColor(QPalette::Base, Qt::transparent);
    edit.setPalette(palette);
}

}  // namespace

AccountsTab::AccountsTab(const LocalizedStrings& strings) : QtTabView(new QWidget), strings_(strings) {
    widget()->setObjectName("accountsTab");
    auto* layout = new QHBoxLayout(widget());
    layout->setSpacing(widget()->fontMetrics().height());
    layout->addWidget(makeTableArea(), 2);
    layout->addWidget(makeDetails(), 3);
    widget()->setFocusProxy(table_);
}

QWidget* AccountsTab::makeTableArea() {
    auto* area = new QWidget(widget());
    table_ = makeTable(area);
    hint_ = makeHint(area);

    auto* add = makeButton("addAccount", strings_.localizedString("&Add...", "Accounts tab"),
                           &AccountsTab::addAccount);
    removeButton_ = makeButton("removeAccount", strings_.localizedString("&Remove...", "Accounts tab"),
                               &AccountsTab::removeAccount);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(removeButton_);
    buttons->addStretch(1);

    auto* layout = new QGridLayout(area);
    layout->setContentsMargins({});
    layout->addWidget(table_, 0, 0);
    layout->addWidget(hint_, 0, 0);
    layout->addLayout(buttons, 1, 0);
    return area;
}

QListView* AccountsTab::makeTable(QWidget* area) {
    model_ = new AccountsTableModel(strings_, area);
    auto* table = new QListView(area);
    table->setObjectName("accounts");
    table->setAccessibleName(toQString(strings_.localizedString("Accounts", "Accounts tab")));
    table->setModel(model_);
    table->setItemDelegate(new AccountCellDelegate(table));
    table->setUniformItemSizes(true);
    table->setResizeMode(QListView::Adjust);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->setTabKeyNavigation(false);
    table->setMinimumWidth(table->fontMetrics().averageCharWidth() * smallestTableWidthInCharacters);
    QObject::connect(table->selectionModel(), &QItemSelectionModel::selectionChanged, &connections_, [this] {
        if (events_ != nullptr)
            events_->tableViewSelectionDidChange();
    });
    auto* removeKey = new QShortcut(QKeySequence(Qt::Key_Delete), table);
    removeKey->setContext(Qt::WidgetShortcut);
    QObject::connect(removeKey, &QShortcut::activated, &connections_, [this] {
        if (removeButton_->isEnabled())
            removeAccount();
    });
    return table;
}

// Lies over the empty table.
QLabel* AccountsTab::makeHint(QWidget* area) {
    auto* hint =
        new QLabel(toQString(strings_.localizedString(
                       "There is no account yet. Add one, and its reports are fetched with the next import.",
                       "Accounts tab")),
                   area);
    hint->setObjectName("noAccountsHint");
    hint->setTextFormat(Qt::PlainText);
    hint->setWordWrap(true);
    hint->setAlignment(Qt::AlignCenter);
    hint->setMargin(hint->fontMetrics().height());
    hint->setForegroundRole(QPalette::Text);
    hint->setAttribute(Qt::WA_TransparentForMouseEvents);
    return hint;
}

QPushButton* AccountsTab::makeButton(const char* name, const std::string& label,
                                     void (AccountsTab::*action)()) {
    auto* button = new QPushButton(toQString(label), table_->parentWidget());
    button->setObjectName(name);
    button->setAutoDefault(true);  // Return presses it while it has the focus
    QObject::connect(button, &QPushButton::clicked, &connections_, [this, action] { (this->*action)(); });
    return button;
}

QWidget* AccountsTab::makeDetails() {
    auto* area = new QWidget(widget());
    area->setObjectName("accountDetails");
    detailOpacity_ = new QGraphicsOpacityEffect(area);
    area->setGraphicsEffect(detailOpacity_);
    auto* form = new QFormLayout(area);
    form->setContentsMargins({});
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setRowWrapPolicy(QFormLayout::DontWrapRows);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    addField(*form, AccountField::Name, "accountName", strings_.localizedString("&Name:", "Accounts tab"));
    addField(*form, AccountField::VendorID, "accountVendorID",
             strings_.localizedString("&Vendor ID:", "Accounts tab"));
    addField(*form, AccountField::Email, "accountEmail",
             strings_.localizedString("&E-mail:", "Accounts tab"));
    addField(*form, AccountField::Password, "accountPassword",
             strings_.localizedString("&Password:", "Accounts tab"));
    addShowPassword(*form);

    QLineEdit& vendorID = *fieldOf(AccountField::VendorID).widget;
    vendorID.setReadOnly(true);
    blendIntoWindow(vendorID);
    fieldOf(AccountField::Email).widget->setInputMethodHints(Qt::ImhEmailCharactersOnly);
    return area;
}

void AccountsTab::addField(QFormLayout& form, AccountField field, const char* name,
                           const std::string& label) {
    auto* edit = new QLineEdit(form.parentWidget());
    edit->setObjectName(name);
    edit->setMinimumWidth(edit->fontMetrics().averageCharWidth() * smallestFieldWidthInCharacters);
    edit->setMaxLength(std::numeric_limits<int>::max());  // a text that was cut would be stored as cut
    fieldOf(field).widget = edit;
    form.addRow(toQString(label), edit);
    if (field == AccountField::VendorID)
        return;
    QObject::connect(edit, &QLineEdit::returnPressed, &connections_, [this, field] { sendAction(field); });
    QObject::connect(edit, &QLineEdit::editingFinished, &connections_,
                     [this, field] { sendActionOfChange(field); });
}

void AccountsTab::addShowPassword(QFormLayout& form) {
    QLineEdit* password = fieldOf(AccountField::Password).widget;
    password->setEchoMode(QLineEdit::Password);
    showPassword_ = new QCheckBox(toQString(strings_.localizedString("&Show password", "Accounts tab")),
                                  form.parentWidget());
    showPassword_->setObjectName("showPassword");
    form.addRow(nullptr, showPassword_);
    QObject::connect(showPassword_, &QCheckBox::toggled, password, [password](bool isShown) {
        password->setEchoMode(isShown ? QLineEdit::Normal : QLineEdit::Password);
    });
}

void AccountsTab::setEvents(AccountsViewEvents* events) {
    events_ = events;
    if (widget() == nullptr)  // the window that is destroyed with the tab in it takes the widgets along
        return;
    model_->setEvents(events);
    hint_->setVisible(model_->rowCount() == 0);
}

void AccountsTab::addAccount() {
    if (events_ == nullptr)
        return;
    hasNewSelection_ = false;
    events_->addAccount();
    if (!hasNewSelection_)
        return;
    // Its name is the first thing to give to a new account.
    fieldOf(AccountField::Name).widget->setFocus();
    fieldOf(AccountField::Name).widget->selectAll();
}

void AccountsTab::removeAccount() {
    if (events_ != nullptr)
        events_->removeAccount();
}

int AccountsTab::selectedRow() const {
    const QModelIndexList selected = table_->selectionModel()->selectedIndexes();
    return selected.isEmpty() ? -1 : selected.front().row();
}

void AccountsTab::selectRow(int row) {
    hasNewSelection_ = true;
    table_->setCurrentIndex(model_->index(row));
    table_->scrollTo(model_->index(row));
}

void AccountsTab::reloadTable() {
    table_->selectionModel()->clear();  // a reset of the model drops the selection without a word
    model_->reload();
    hint_->setVisible(model_->rowCount() == 0);
}

void AccountsTab::reloadRow(int row) {
    model_->reloadRow(row);
}

void AccountsTab::endEditing() {
    for (const AccountField field : editableFields)
        sendActionOfChange(field);
}

void AccountsTab::sendActionOfChange(AccountField field) {
    if (fieldOf(field).widget->text() != fieldOf(field).textSentLast)
        sendAction(field);
}

void AccountsTab::sendAction(AccountField field) {
    // One action commits all fields.
    for (Field& shown : fields_)
        shown.textSentLast = shown.widget->text();
    if (events_ == nullptr)
        return;
    if (field == AccountField::Name)
        events_->nameChangedAction();
    if (field == AccountField::Email)
        events_->emailChangedAction();
    if (field == AccountField::Password)
        events_->passwordChangedAction();
}

std::string AccountsTab::text(AccountField field) const {
    return toUtf8(fields_.at(static_cast<std::size_t>(field)).widget->text());
}

void AccountsTab::setText(AccountField field, const std::string& text) {
    Field& shown = fieldOf(field);
    shown.widget->setText(toQString(text));
    shown.widget->setCursorPosition(0);
    shown.textSentLast = shown.widget->text();
    if (field == AccountField::Password)
        showPassword_->setChecked(false);  // nobody has asked to see this account's
}

void AccountsTab::setEnabled(AccountField field, bool isEnabled) {
    fieldOf(field).widget->setEnabled(isEnabled);
    if (field != AccountField::Password)
        return;
    showPassword_->setEnabled(isEnabled);
    // The whole area is faint without an account; fainter still it could not be read.
    QPalette palette = QApplication::palette(showPassword_);
    palette.setColor(QPalette::Disabled, QPalette::WindowText,
                     palette.color(QPalette::Active, QPalette::WindowText));
    showPassword_->setPalette(palette);
}

void AccountsTab::setDetailAlpha(double alpha) {
    detailOpacity_->setOpacity(alpha);
    detailOpacity_->setEnabled(alpha < 1);  // so that typing paints no more than the field
}

void AccountsTab::setRemoveButtonEnabled(bool isEnabled) {
    const bool isFocused = removeButton_->window()->focusWidget() == removeButton_;
    if (!isEnabled && isFocused)
        table_->setFocus();
    removeButton_->setEnabled(isEnabled);
}

}  // namespace corvane
