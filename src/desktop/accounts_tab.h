#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <array>

#include "desktop/accounts_table_model.h"
#include "desktop/qt_tab_view.h"
#include "platform/localized_strings.h"
#include "settings_window/accounts_view.h"

class QFormLayout;
class QGraphicsOpacityEffect;

namespace corvane {

/// The Accounts tab's content: the table with its buttons, and the fields beside it.
class AccountsTab final : public AccountsView, public QtTabView {
  public:
    explicit AccountsTab(const LocalizedStrings& strings);

    void setEvents(AccountsViewEvents* events) override;

    int selectedRow() const override;
    void selectRow(int row) override;
    void reloadTable() override;
    void reloadRow(int row) override;
    void endEditing() override;

    std::string text(AccountField field) const override;
    void setText(AccountField field, const std::string& text) override;
    void setEnabled(AccountField field, bool isEnabled) override;
    void setDetailAlpha(double alpha) override;
    void setRemoveButtonEnabled(bool isEnabled) override;

  private:
    struct Field {
        QLineEdit* widget = nullptr;
        QString textSentLast;  ///< set here, or told of by its action
    };

    QWidget* makeTableArea();
    QListView* makeTable(QWidget* area);
    QLabel* makeHint(QWidget* area);
    QPushButton* makeButton(const char* name, const std::string& label, void (AccountsTab::*action)());
    QWidget* makeDetails();
    void addField(QFormLayout& form, AccountField field, const char* name, const std::string& label);
    void addShowPassword(QFormLayout& form);

    void addAccount();
    void removeAccount();
    void sendAction(AccountField field);
    void sendActionOfChange(AccountField field);
    Field& fieldOf(AccountField field) { return fields_.at(static_cast<std::size_t>(field)); }

    const LocalizedStrings& strings_;
    AccountsViewEvents* events_ = nullptr;
    AccountsTableModel* model_ = nullptr;
    QListView* table_ = nullptr;
    QLabel* hint_ = nullptr;
    QPushButton* removeButton_ = nullptr;
    QCheckBox* showPassword_ = nullptr;
    QGraphicsOpacityEffect* detailOpacity_ = nullptr;
    std::array<Field, 4> fields_;
    bool hasNewSelection_ = false;  ///< a row was selected from here, not by the user
    QObject connections_;           // goes first: the widgets may send signals while they are destroyed
};

}  // namespace corvane
