#include "desktop/accounts_table_model.h"

#include "desktop/qt_text.h"

namespace corvane {

AccountsTableModel::AccountsTableModel(const LocalizedStrings& strings, QObject* parent)
    : QAbstractListModel(parent),
      nameOfNamelessRow_(toQString(strings.localizedString("Account without a name", "Accounts tab"))) {}

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
    switch (role) {
        case Qt::DisplayRole:
            return toQString(events_->viewForTableColumn(index.row()).title);
        case SubtitleRole:
            return toQString(events_->viewForTableColumn(index.row()).subtitle);
        case Qt::AccessibleTextRole:
            return accessibleText(events_->viewForTableColumn(index.row()));
        default:
            return {};
    }
}

QString AccountsTableModel::accessibleText(const AccountSelectionCell& cell) const {
    QStringList lines;
    for (const std::string* line : {&cell.title, &cell.subtitle}) {
        if (const QString text = toQString(*line); !text.trimmed().isEmpty())
            lines.append(text);
    }
    lines.removeDuplicates();
    return lines.isEmpty() ? nameOfNamelessRow_ : lines.join(QStringLiteral(", "));
}

}  // namespace corvane
