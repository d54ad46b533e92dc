#include "desktop/import_sheet.h"

#include <QCloseEvent>
#include <QFrame>
#include <QVBoxLayout>
#include <utility>

namespace corvane {

namespace {

/// Goes away only when its program says so.
class SheetDialog final : public QDialog {
  public:
    SheetDialog() : QDialog(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint) {}

    void reject() override {}

  protected:
    void closeEvent(QCloseEvent* event) override { event->ignore(); }
};

}  // namespace

ImportSheet::ImportSheet(std::shared_ptr<ReportUpdateViewController> controller, QWidget* content)
    : controller_(std::move(controller)), content_(content), dialog_(std::make_unique<SheetDialog>()) {
    dialog_->setObjectName("importSheet");
    dialog_->setWindowModality(Qt::WindowModal);
    // Tells the sheet from its window also where the desktop draws no frame around it.
    auto* frame = new QFrame(dialog_.get());
    frame->setFrameStyle(static_cast<int>(QFrame::StyledPanel) | static_cast<int>(QFrame::Raised));
    auto* inside = new QVBoxLayout(frame);
    inside->addWidget(content);
    auto* layout = new QVBoxLayout(dialog_.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(frame);
}

ImportSheet::~ImportSheet() {
    if (!content_.isNull() && dialog_->isAncestorOf(content_))
        content_->setParent(nullptr);
}

void ImportSheet::setResizable(bool isResizable) {
    dialog_->layout()->setSizeConstraint(isResizable ? QLayout::SetDefaultConstraint : QLayout::SetFixedSize);
}

void ImportSheet::begin(QWidget& parent, std::function<void()> didEnd) {
    didEnd_ = std::move(didEnd);
    const Qt::WindowFlags flags = dialog_->windowFlags();
    dialog_->setParent(&parent, flags);
    dialog_->setWindowTitle(parent.windowTitle());
    controller_->viewWillAppear();
    dialog_->show();
    controller_->viewDidAppear();
}

void ImportSheet::raise() {
    dialog_->raise();
}

bool ImportSheet::endSheet() {
    if (!didEnd_)
        return false;
    const std::function<void()> didEnd = std::exchange(didEnd_, nullptr);
    abandon();
    didEnd();
    return true;
}

void ImportSheet::abandon() {
    didEnd_ = nullptr;
    dialog_->hide();
    dialog_->setParent(nullptr, dialog_->windowFlags());
}

}  // namespace corvane
