#pragma once

#include <QStyledItemDelegate>

namespace corvane {

/// Draws a row of the accounts table: a title, and below it a smaller, fainter subtitle. A text that is
/// longer than the row is wide ends in dots, and pointing at the row shows it whole.
class AccountCellDelegate final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
};

}  // namespace corvane
