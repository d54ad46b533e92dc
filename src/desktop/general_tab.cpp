#include "desktop/general_tab.h"

#include <QFont>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QVBoxLayout>

#include "desktop/qt_text.h"
#include "desktop/read_only_text.h"
#include "platform/text_format.h"

namespace corvane {

namespace {

constexpr int iconSize = 64;

ReadOnlyText* makeText(const QString& text, const char* name, QWidget* parent) {
    auto* widget = new ReadOnlyText(text, parent);
    widget->setObjectName(name);
    widget->setFocusPolicy(Qt::StrongFocus);
    widget->setTabChangesFocus(true);
    return widget;
}

}  // namespace

GeneralTab::GeneralTab(const ProgramFacts& facts, const LocalizedStrings& strings) {
    setObjectName("generalTab");

    auto* icon = new QLabel(this);
    icon->setPixmap(windowIcon().pixmap(QSize(iconSize, iconSize), devicePixelRatioF()));

    icon->setAccessibleName(facts.name);

    auto* name = makeText(facts.name, "programName", this);
    name->setAccessibleName(toQString(strings.localizedString("Name", "General tab")));
    QFont nameFont = name->font();
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.6);
    nameFont.setBold(true);
    name->setFont(nameFont);

    const std::string version =
        formatText(strings.localizedString("Version %@", "General tab"), {facts.version.toStdString()});
    auto* versionText = makeText(toQString(version), "programVersion", this);
    versionText->setAccessibleName(toQString(strings.localizedString("Version", "General tab")));

    auto* folderLabel = new QLabel(
        toQString(strings.localizedString("Imported reports are stored in this folder:", "General tab")),
        this);
    folderLabel->setTextFormat(Qt::PlainText);
    folderLabel->setWordWrap(true);
    auto* folder = makeText(facts.reportsFolder, "reportsFolder", this);
    folder->setAccessibleName(folderLabel->text());

    auto* texts = new QVBoxLayout;
    texts->setSpacing(fontMetrics().height() / 4);
    texts->addWidget(name);
    texts->addWidget(versionText);
    texts->addSpacing(fontMetrics().height());
    texts->addWidget(folderLabel);
    texts->addWidget(folder);
    texts->addStretch(1);

    auto* content = new QHBoxLayout(this);
    content->setSpacing(fontMetrics().height());
    content->addWidget(icon, 0, Qt::AlignTop);
    content->addLayout(texts, 1);
}

}  // namespace corvane
