#pragma once

#include <QAbstractListModel>

#include "settings_window/accounts_view.h"

namespace corvane {

/// The rows of the accounts table as the toolkit asks for them. A row's e-mail stands below its name.
class AccountsTableModel final : public QAbstractListModel {
  public:
    using QAbstractListModel::QAbstractListModel;

    /// Null: there are no rows.
    void setEvents(const AccountsViewEvents* events);
    void reload();
    void reloadRow(int row);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

  private:
    const AccountsViewEvents* events_ = nullptr;
    int rowCount_ = 0;  ///< as of the last reload
};

}  // namespace corvane
