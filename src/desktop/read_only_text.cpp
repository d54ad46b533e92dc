#include "desktop/read_only_text.h"

#include <QEvent>
#include <QTextDocument>
#include <QTextOption>
#include <algorithm>
#include <cmath>
#include <memory>

namespace corvane {

ReadOnlyText::ReadOnlyText(const QString& text, QWidget* parent) : QTextEdit(parent) {
    setReadOnly(true);
    setAcceptRichText(false);
    setUndoRedoEnabled(false);
    setPlainText(text);
    setFrameShape(QFrame::NoFrame);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFocusPolicy(Qt::ClickFocus);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    viewport()->setCursor(Qt::IBeamCursor);
    applyPalette();
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void ReadOnlyText::setPreferredWidth(int width) {
    preferredWidth_ = width;
    updateGeometry();
}

int ReadOnlyText::heightForWidth(int width) const {
    const std::unique_ptr<QTextDocument> copy(document()->clone());
    copy->setTextWidth(std::max(width, 1));
    return std::min(static_cast<int>(std::ceil(copy->size().height())), maximumHeight());
}

QSize ReadOnlyText::sizeHint() const {
    const int width = textWidth();
    return {width, heightForWidth(width)};
}

QSize ReadOnlyText::minimumSizeHint() const {
    return {std::min(textWidth(), fontMetrics().averageCharWidth() * 20), fontMetrics().height()};
}

int ReadOnlyText::textWidth() const {
    const int natural = static_cast<int>(std::ceil(document()->idealWidth())) + 1;
    return preferredWidth_ > 0 ? preferredWidth_ : natural;
}

void ReadOnlyText::changeEvent(QEvent* event) {
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        applyPalette();
    if (event->type() == QEvent::FontChange)
        updateGeometry();
}

// It stands on the window's background, so it takes the window's text colour.
void ReadOnlyText::applyPalette() {
    QPalette wanted = palette();
    if (wanted.color(QPalette::Text) == wanted.color(QPalette::WindowText))
        return;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
        wanted.setColor(group, QPalette::Text, wanted.color(group, QPalette::WindowText));
    setPalette(wanted);
}

}  // namespace corvane
