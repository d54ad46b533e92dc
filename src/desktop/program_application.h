#pragma once

#include <QApplication>
#include <functional>

namespace corvane {

/// The toolkit's application object. Whoever asks the toolkit to end the program, as a session's end does,
/// asks our own way of ending instead: the toolkit's would first close all windows, and be refused by the
/// sheets.
class ProgramApplication final : public QApplication {
  public:
    /// The arguments must outlive the object.
    ProgramApplication(int& argc, char** argv);

    void setQuitHandler(std::function<void()> quitHandler) { quitHandler_ = std::move(quitHandler); }

    bool event(QEvent* event) override;

  private:
    std::function<void()> quitHandler_;
};

}  // namespace corvane
