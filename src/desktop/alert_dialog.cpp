#include "desktop/alert_dialog.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/qt_text.h"
#include "desktop/read_only_text.h"

namespace corvane {

namespace {

constexpr int textWidthInCharacters = 60;

QStyle::StandardPixmap iconOf(AlertStyle style) {
    switch (style) {
        case AlertStyle::Informational:
            return QStyle::SP_MessageBoxInformation;
        case AlertStyle::Critical:
            return QStyle::SP_MessageBoxCritical;
        case AlertStyle::Warning:
            break;
    }
    return QStyle::SP_MessageBoxWarning;
}

std::optional<std::size_t> cancelIndexOf(const Alert& alert) {
    const auto& buttons = alert.buttons;
    const auto cancel = std::find_if(buttons.begin(), buttons.end(),
                                     [](const AlertButton& button) { return button.isCancel; });
    if (cancel != buttons.end())
        return static_cast<std::size_t>(cancel - buttons.begin());
    if (buttons.size() == 1)
        return 0;
    return std::nullopt;
}

}  // namespace

AlertDialog::AlertDialog(const Alert& alert, QWidget* parent)
    : QDialog(parent), cancelIndex_(cancelIndexOf(alert)), lastIndex_(alert.buttons.size() - 1) {
    setObjectName("alert");
    setWindowModality(Qt::ApplicationModal);
    setWindowTitle(QGuiApplication::applicationDisplayName());
    setAccessibleName(toQString(alert.messageText));
    setAccessibleDescription(toQString(alert.informativeText));

    auto* icon = new QLabel(this);
    icon->setObjectName("alertIcon");
    icon->setAccessibleName(windowTitle());
    const int iconSize = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    icon->setPixmap(style()
                        ->standardIcon(iconOf(alert.style), nullptr, this)
                        .pixmap(QSize(iconSize, iconSize), devicePixelRatioF()));

    auto* column = new QVBoxLayout;
    addTexts(alert, *column);
    if (alert.accessory)
        addTextField(*alert.accessory, *column);

    auto* upperPart = new QHBoxLayout;
    upperPart->setSpacing(fontMetrics().height());
    upperPart->addWidget(icon, 0, Qt::AlignTop);
    upperPart->addLayout(column, 1);

    auto* buttonRow = new QHBoxLayout;
    addButtons(alert, *buttonRow);

    auto* content = new QVBoxLayout(this);
    content->addLayout(upperPart, 1);
    content->addSpacing(content->spacing());
    content->addLayout(buttonRow);
}

void AlertDialog::addTexts(const Alert& alert, QBoxLayout& column) {
    const int width = fontMetrics().averageCharWidth() * textWidthInCharacters;
    const int screenHeight = screen()->availableGeometry().height();
    const auto addText = [&](const std::string& content, const char* name, bool isBold, int highestText) {
        auto* text = new ReadOnlyText(toQString(content), this);
        text->setObjectName(name);
        text->setAccessibleName(toQString(content));
        if (isBold) {
            QFont font = text->font();
            font.setBold(true);
            text->setFont(font);
        }
        text->setMaximumHeight(highestText);
        text->setPreferredWidth(width);
        const bool scrolls = text->heightForWidth(width) >= highestText;
        text->setFocusPolicy(scrolls ? Qt::StrongFocus : Qt::ClickFocus);
        column.addWidget(text);
    };
    addText(alert.messageText, "alertMessageText", true, screenHeight / 4);
    if (!alert.informativeText.empty())
        addText(alert.informativeText, "alertInformativeText", false, screenHeight / 2);
    column.addStretch(1);
}

void AlertDialog::addTextField(const AlertTextField& field, QBoxLayout& column) {
    textField_ = new QLineEdit(this);
    textField_->setObjectName("alertTextField");
    textField_->setPlaceholderText(toQString(field.placeholder));
    textField_->setAccessibleName(toQString(field.placeholder));
    column.addWidget(textField_);
    textField_->setFocus();
}

void AlertDialog::addButtons(const Alert& alert, QBoxLayout& row) {
    row.addStretch(1);
    for (std::size_t index = 0; index < alert.buttons.size(); ++index) {
        auto* button = new QPushButton(withoutMnemonic(alert.buttons[index].title), this);
        button->setObjectName(QStringLiteral("alertButton%1").arg(index));
        button->setAccessibleName(toQString(alert.buttons[index].title));
        connect(button, &QPushButton::clicked, this, [this, index] { press(index); });
        row.addWidget(button);
        if (index > 0)
            continue;
        button->setDefault(true);
        if (textField_ == nullptr)
            button->setFocus();
    }
}

std::size_t AlertDialog::answer() const {
    return answer_.value_or(cancelIndex_.value_or(lastIndex_));
}

QString AlertDialog::accessoryText() const {
    return textField_ == nullptr ? QString() : textField_->text();
}

void AlertDialog::reject() {
    if (cancelIndex_)
        press(*cancelIndex_);
}

void AlertDialog::press(std::size_t index) {
    answer_ = index;
    accept();
}

}  // namespace corvane
