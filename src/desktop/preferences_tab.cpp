#include "desktop/preferences_tab.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "desktop/qt_text.h"

namespace corvane {

PreferencesTab::PreferencesTab(const LocalizedStrings& strings) : QtTabView(new QWidget) {
    widget()->setObjectName("preferencesTab");
    auto* explanation = new QLabel(toQString(strings.localizedString(
                                       "Reports that were fetched for one account are not fetched again for "
                                       "an account that is added later, until the cache is reset.",
                                       "Advanced tab")),
                                   widget());
    explanation->setObjectName("resetCacheExplanation");
    explanation->setTextFormat(Qt::PlainText);
    explanation->setWordWrap(true);
    auto* reset =
        new QPushButton(toQString(strings.localizedString("&Reset Cache...", "Advanced tab")), widget());
    reset->setObjectName("resetCache");
    reset->setAccessibleDescription(explanation->text());
    reset->setAutoDefault(true);  // Return presses it while it has the focus
    QObject::connect(reset, &QPushButton::clicked, &connections_, [this] {
        if (events_ != nullptr)
            events_->resetCache();
    });

    auto* layout = new QVBoxLayout(widget());
    layout->addWidget(explanation);
    layout->addSpacing(widget()->fontMetrics().height() / 2);
    layout->addWidget(reset, 0, Qt::AlignLeft);
    layout->addStretch(1);
    widget()->setFocusProxy(reset);
}

}  // namespace corvane
