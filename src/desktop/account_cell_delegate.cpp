#include "desktop/account_cell_delegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "desktop/accounts_table_model.h"

namespace corvane {

namespace {

constexpr double subtitleScale = 0.9;
/// How much of the background is in the subtitle's colour.
constexpr double subtitleFaintness = 0.3;
constexpr int smallestWidthInCharacters = 12;

QFont subtitleFont(const QFont& titleFont) {
    QFont font = titleFont;
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * subtitleScale);
    return font;
}

int marginOf(const QFontMetrics& title) {
    return title.lineSpacing() / 3;
}

/// The two lines of a row, with the fonts that they are drawn in.
struct Cell {
    Cell(const QStyleOptionViewItem& option, const QModelIndex& index)
        : title(index.data(Qt::DisplayRole).toString()),
          subtitle(index.data(AccountsTableModel::SubtitleRole).toString()),
          subtitleMetrics(subtitleFont(option.font)) {
        const QFontMetrics& titleMetrics = option.fontMetrics;
        const int margin = marginOf(titleMetrics);
        const QRect inside = option.rect.adjusted(margin, margin, -margin, -margin);
        titleRect = QRect(inside.left(), inside.top(), inside.width(), titleMetrics.lineSpacing());
        subtitleRect =
            QRect(inside.left(), titleRect.bottom() + 1, inside.width(), subtitleMetrics.lineSpacing());
        shownTitle = titleMetrics.elidedText(title, Qt::ElideRight, titleRect.width());
        shownSubtitle = subtitleMetrics.elidedText(subtitle, Qt::ElideRight, subtitleRect.width());
    }

    bool isCut() const { return shownTitle != title || shownSubtitle != subtitle; }

    QString title;
    QString subtitle;
    QString shownTitle;
    QString shownSubtitle;
    QFontMetrics subtitleMetrics;
    QRect titleRect;
    QRect subtitleRect;
};

QPalette::ColorGroup colorGroupOf(const QStyleOptionViewItem& option) {
    if (!(option.state & QStyle::State_Enabled))
        return QPalette::Disabled;
    return (option.state & QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
}

QColor mixed(const QColor& color, const QColor& other, double shareOfOther) {
    const auto mix = [shareOfOther](float one, float two) {
        return static_cast<float>(one * (1 - shareOfOther) + two * shareOfOther);
    };
    return QColor::fromRgbF(mix(color.redF(), other.redF()), mix(color.greenF(), other.greenF()),
                            mix(color.blueF(), other.blueF()));
}

}  // namespace

void AccountCellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const Cell cell(row, index);
    // The style draws the row's background, selection and focus; the texts are ours.
    row.text.clear();
    const QStyle* style = row.widget != nullptr ? row.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);

    const QPalette::ColorGroup group = colorGroupOf(row);
    const bool isSelected = row.state & QStyle::State_Selected;
    const QColor titleColor =
        row.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text);
    const QColor subtitleColor =
        isSelected ? titleColor
                   : mixed(titleColor, row.palette.color(group, QPalette::Base), subtitleFaintness);

    const Qt::Alignment alignment =
        QStyle::visualAlignment(row.direction, Qt::AlignLeft | Qt::AlignVCenter) | Qt::AlignAbsolute;
    const int flags = static_cast<int>(alignment) | Qt::TextSingleLine;
    painter->save();
    painter->setFont(row.font);
    painter->setPen(titleColor);
    painter->drawText(cell.titleRect, flags, cell.shownTitle);
    painter->setFont(subtitleFont(row.font));
    painter->setPen(subtitleColor);
    painter->drawText(cell.subtitleRect, flags, cell.shownSubtitle);
    painter->restore();
}

QSize AccountCellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QFontMetrics title(row.font);
    const QFontMetrics subtitle(subtitleFont(row.font));
    return {title.averageCharWidth() * smallestWidthInCharacters,
            title.lineSpacing() + subtitle.lineSpacing() + 2 * marginOf(title)};
}

bool AccountCellDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                    const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip)
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const Cell cell(row, index);
    if (!index.isValid() || !cell.isCut()) {
        QToolTip::hideText();
        return true;
    }
    // Markup of our own, so that what stands in a name is never taken for markup and a long text is wrapped.
    const QString text = QStringLiteral("<p>") + cell.title.toHtmlEscaped() + QStringLiteral("<br>") +
                         cell.subtitle.toHtmlEscaped() + QStringLiteral("</p>");
    QToolTip::showText(event->globalPos(), text, view->viewport(), view->visualRect(index));
    return true;
}

}  // namespace corvane
