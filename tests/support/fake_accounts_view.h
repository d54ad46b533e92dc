#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "settings_window/accounts_view.h"
#include "support/fake_settings_window.h"

namespace corvane {

inline void PrintTo(const AccountSelectionCell& cell, std::ostream* out) {
    *out << '"' << cell.title << "\" over \"" << cell.subtitle << '"';
}

}  // namespace corvane

namespace corvane::test {

/// The Accounts tab in memory: keeps what is shown, and plays the user as a toolkit does. Like a toolkit it
/// shows the rows that it was given last, whatever the list is by now.
class FakeAccountsView final : public AccountsView, public Named {
  public:
    explicit FakeAccountsView(std::string name = "Accounts") : Named(std::move(name)) {}

    void setEvents(AccountsViewEvents* events) override { events_ = events; }

    int selectedRow() const override { return selectedRow_; }
    void selectRow(int row) override { changeSelection(row); }
    void reloadTable() override {
        ++reloadCount;
        rows_.clear();
        for (int row = 0; row < events_->numberOfRowsInTableView(); ++row)
            rows_.push_back(events_->viewForTableColumn(row));
        changeSelection(-1);
    }
    void reloadRow(int row) override {
        reloadedRows.push_back(row);
        rows_.at(static_cast<std::size_t>(row)) = events_->viewForTableColumn(row);
    }
    void endEditing() override {
        if (const auto field = std::exchange(editedField_, std::nullopt))
            sendAction(*field);
    }

    std::string text(AccountField field) const override { return texts_.at(index(field)); }
    void setText(AccountField field, const std::string& text) override {
        texts_.at(index(field)) = text;
        if (editedField_ == field)
            editedField_.reset();
    }
    void setEnabled(AccountField field, bool isEnabled) override {
        enabled_.at(index(field)) = isEnabled;
        if (!isEnabled && sendsActionWhenDisabled)
            sendAction(field);
    }
    void setDetailAlpha(double alpha) override { detailAlpha = alpha; }
    void setRemoveButtonEnabled(bool isEnabled) override { isRemoveButtonEnabled = isEnabled; }

    /// A click on a row, or beside all of them (-1): the edited field loses the focus first.
    void clickRow(int row) {
        endEditing();
        changeSelection(row);
    }
    /// The selection moves and the view has not told yet.
    void moveSelectionSilently(int row) { selectedRow_ = row; }
    void tellSelectionIsChanging() { events_->tableViewSelectionIsChanging(); }
    void tellSelectionDidChange() { events_->tableViewSelectionDidChange(); }

    /// Keys typed into the field, which keeps the focus.
    void type(AccountField field, const std::string& text) {
        texts_.at(index(field)) = text;
        editedField_ = field;
    }
    void pressReturn(AccountField field) {
        editedField_.reset();
        sendAction(field);
    }
    void commit(AccountField field, const std::string& text) {
        type(field, text);
        pressReturn(field);
    }
    /// Changes the field's text behind its back: no editing, no action.
    void replaceText(AccountField field, const std::string& text) { texts_.at(index(field)) = text; }

    void clickAdd() { events_->addAccount(); }
    void clickRemove() { events_->removeAccount(); }

    bool hasEvents() const { return events_ != nullptr; }
    bool isEnabled(AccountField field) const { return enabled_.at(index(field)); }
    const std::vector<AccountSelectionCell>& rows() const { return rows_; }

    double detailAlpha = -1;
    bool isRemoveButtonEnabled = true;
    bool sendsActionWhenDisabled = false;  ///< as a field does that has the focus
    int reloadCount = 0;
    std::vector<int> reloadedRows;

  private:
    static std::size_t index(AccountField field) { return static_cast<std::size_t>(field); }

    void changeSelection(int row) {
        if (std::exchange(selectedRow_, row) != row)
            events_->tableViewSelectionDidChange();
    }

    void sendAction(AccountField field) {
        if (events_ == nullptr)
            return;
        if (field == AccountField::Name)
            events_->nameChangedAction();
        if (field == AccountField::Email)
            events_->emailChangedAction();
        if (field == AccountField::Password)
            events_->passwordChangedAction();
    }

    AccountsViewEvents* events_ = nullptr;
    int selectedRow_ = -1;
    std::vector<AccountSelectionCell> rows_;
    std::array<std::string, 4> texts_{"untouched", "untouched", "untouched", "untouched"};
    std::array<bool, 4> enabled_{true, true, true, true};
    std::optional<AccountField> editedField_;
};

}  // namespace corvane::test
