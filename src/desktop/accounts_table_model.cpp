#include "desktop/accounts_table_model.h"

#include "desktop/qt_text.h"

namespace corvane {

void AccountsTableModel::setEvents(const AccountsViewEvents* events) {
    events_ = events;
    reload();
}

void AccountsTableModel::reload() {
    beginResetModel();
    rowCount_ = events_ == nullptr ? 0 : events_->numberOfRowsInTableView();
    endResetModel();
}

void AccountsTableModel::reloadRow(int row) {
    Q_EMIT dataChanged(index(row), index(row));
}

int AccountsTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rowCount_;
}

QVariant AccountsTableModel::data(const QModelIndex& index, int role) const {
    // Between a change of the list and its reload the toolkit may still ask for a row that has gone.
    if (!index.isValid() || events_ == nullptr || index.row() >= events_->numberOfRowsInTableView())
        return {};
    if (role != Qt::DisplayRole)
        return {};
    const AccountSelectionCell cell = events_->viewForTableColumn(index.row());
    return toQString(cell.title + '\n' + cell.subtitle);
}

}  // namespace corvane
