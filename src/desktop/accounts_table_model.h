#pragma once

#include <QAbstractListModel>

#include "platform/localized_strings.h"
#include "settings_window/accounts_view.h"

namespace corvane {

/// The rows of the accounts table as the toolkit asks for them: the title is the text of a row.
class AccountsTableModel final : public QAbstractListModel {
  public:
    enum Role { SubtitleRole = Qt::UserRole };

    AccountsTableModel(const LocalizedStrings& strings, QObject* parent);

    /// Null: there are no rows.
    void setEvents(const AccountsViewEvents* events);
    void reload();
    void reloadRow(int row);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

  private:
    QString accessibleText(const AccountSelectionCell& cell) const;

    const AccountsViewEvents* events_ = nullptr;
    int rowCount_ = 0;  ///< as of the last reload
    const QString nameOfNamelessRow_;
};

}  // namespace corvane
