#include "desktop/accounts_tab.h"

#include <QFormLayout>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QVBoxLayout>

#include "desktop/qt_text.h"

namespace corvane {

AccountsTab::AccountsTab(const LocalizedStrings& strings) : QtTabView(new QWidget) {
    widget()->setObjectName("accountsTab");
    auto* layout = new QHBoxLayout(widget());
    layout->addWidget(makeTable(strings), 2);
    layout->addWidget(makeDetails(strings), 3);
}

QWidget* AccountsTab::makeTable(const LocalizedStrings& strings) {
    auto* area = new QWidget(widget());
    model_ = new AccountsTableModel(area);
    table_ = new QListView(area);
    table_->setObjectName("accounts");
    table_->setAccessibleName(toQString(strings.localizedString("Accounts", "Accounts tab")));
    table_->setModel(model_);
    table_->setUniformItemSizes(true);
    QObject::connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, &connections_, [this] {
        if (events_ != nullptr)
            events_->tableViewSelectionDidChange();
    });

    auto* add = new QPushButton(toQString(strings.localizedString("&Add...", "Accounts tab")), area);
    add->setObjectName("addAccount");
    QObject::connect(add, &QPushButton::clicked, &connections_, [this] {
        if (events_ != nullptr)
            events_->addAccount();
    });
    removeButton_ = new QPushButton(toQString(strings.localizedString("&Remove...", "Accounts tab")), area);
    removeButton_->setObjectName("removeAccount");
    QObject::connect(removeButton_, &QPushButton::clicked, &connections_, [this] {
        if (events_ != nullptr)
            events_->removeAccount();
    });

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(removeButton_);
    buttons->addStretch(1);
    auto* layout = new QVBoxLayout(area);
    layout->setContentsMargins({});
    layout->addWidget(table_);
    layout->addLayout(buttons);
    return area;
}

QWidget* AccountsTab::makeDetails(const LocalizedStrings& strings) {
    auto* area = new QWidget(widget());
    detailOpacity_ = new QGraphicsOpacityEffect(area);
    area->setGraphicsEffect(detailOpacity_);
    auto* layout = new QFormLayout(area);
    const auto addField = [&](AccountField field, const char* name, const std::string& label) {
        auto* edit = new QLineEdit(area);
        edit->setObjectName(name);
        fieldOf(field).widget = edit;
        layout->addRow(toQString(label), edit);
        QObject::connect(edit, &QLineEdit::editingFinished, &connections_,
                         [this, field] { sendAction(field); });
    };
    addField(AccountField::Name, "accountName", strings.localizedString("&Name:", "Accounts tab"));
    addField(AccountField::VendorID, "accountVendorID",
             strings.localizedString("&Vendor ID:", "Accounts tab"));
    addField(AccountField::Email, "accountEmail", strings.localizedString("&E-mail:", "Accounts tab"));
    addField(AccountField::Password, "accountPassword",
             strings.localizedString("&Password:", "Accounts tab"));
    fieldOf(AccountField::VendorID).widget->setReadOnly(true);
    fieldOf(AccountField::Password).widget->setEchoMode(QLineEdit::Password);
    return area;
}

void AccountsTab::setEvents(AccountsViewEvents* events) {
    events_ = events;
    if (widget() != nullptr)  // the window that is destroyed with the tab in it takes the widgets along
        model_->setEvents(events);
}

int AccountsTab::selectedRow() const {
    const QModelIndexList selected = table_->selectionModel()->selectedIndexes();
    return selected.isEmpty() ? -1 : selected.front().row();
}

void AccountsTab::selectRow(int row) {
    table_->setCurrentIndex(model_->index(row));
}

void AccountsTab::reloadTable() {
    table_->selectionModel()->clear();  // a reset of the model drops the selection without a word
    model_->reload();
}

void AccountsTab::reloadRow(int row) {
    model_->reloadRow(row);
}

void AccountsTab::endEditing() {
    for (const AccountField field : {AccountField::Name, AccountField::Email, AccountField::Password}) {
        if (fieldOf(field).widget->text() != fieldOf(field).textSentLast)
            sendAction(field);
    }
}

void AccountsTab::sendAction(AccountField field) {
    fieldOf(field).textSentLast = fieldOf(field).widget->text();
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
    shown.textSentLast = shown.widget->text();
}

void AccountsTab::setEnabled(AccountField field, bool isEnabled) {
    fieldOf(field).widget->setEnabled(isEnabled);
}

void AccountsTab::setDetailAlpha(double alpha) {
    detailOpacity_->setOpacity(alpha);
}

void AccountsTab::setRemoveButtonEnabled(bool isEnabled) {
    removeButton_->setEnabled(isEnabled);
}

}  // namespace corvane
