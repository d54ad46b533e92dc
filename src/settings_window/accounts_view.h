#pragma once

#include <string>

#include "settings_window/account_selection_cell.h"
#include "settings_window/settings_window_view.h"

namespace corvane {

class AccountsViewEvents;

/// The text fields of the detail area. The vendor ID is only shown.
enum class AccountField { Name, VendorID, Email, Password };

/// The content of the Accounts tab as the toolkit holds it: a table of one column and single selection, an
/// add and a remove button, and the detail area with its fields. It decides nothing; what the user does comes
/// back through AccountsViewEvents. Main thread only.
class AccountsView : public TabView {
  public:
    /// Whom to ask for rows and to tell about the user's doings. Null, at first and before the receiver goes:
    /// nobody.
    virtual void setEvents(AccountsViewEvents* events) = 0;

    /// Negative for none.
    virtual int selectedRow() const = 0;

    /// Makes the row the only selected one, and visible. Tells of the change before it returns, as after a
    /// click.
    virtual void selectRow(int row) = 0;

    /// Asks for the rows anew. No row is selected afterwards; a selection that ends by this is told of before
    /// the call returns, as after a click.
    virtual void reloadTable() = 0;

    /// Asks for the one row anew and leaves everything else, the selection and the fields included, alone.
    virtual void reloadRow(int row) = 0;

    /// Sends the action of a field whose text the user has changed since it was set here or since its action
    /// was sent last. Does nothing when there is none.
    virtual void endEditing() = 0;

    virtual std::string text(AccountField field) const = 0;
    /// Sends no action.
    virtual void setText(AccountField field, const std::string& text) = 0;
    virtual void setEnabled(AccountField field, bool isEnabled) = 0;

    /// How opaque the detail area is, from 0 to 1.
    virtual void setDetailAlpha(double alpha) = 0;
    virtual void setRemoveButtonEnabled(bool isEnabled) = 0;
};

/// What the accounts table asks for, and what the user does with the tab.
class AccountsViewEvents {
  public:
    virtual ~AccountsViewEvents() = default;

    virtual int numberOfRowsInTableView() const = 0;
    /// A row out of range is a fault.
    virtual AccountSelectionCell viewForTableColumn(int row) const = 0;

    /// The selection is another one now. While the mouse is still down the first may come, any number of
    /// times; the second comes once at the end.
    virtual void tableViewSelectionIsChanging() = 0;
    virtual void tableViewSelectionDidChange() = 0;

    /// The buttons.
    virtual void addAccount() = 0;
    virtual void removeAccount() = 0;

    /// The fields' actions: Return was pressed, or the editing of the field has ended.
    virtual void nameChangedAction() = 0;
    virtual void passwordChangedAction() = 0;
    virtual void emailChangedAction() = 0;
};

}  // namespace corvane
