#pragma once

namespace corvane {

/// The running application. Main thread only.
class Application {
  public:
    virtual ~Application() = default;

    /// Asks the application to end. Returns at once; the end comes when control is back in the main loop, and
    /// no task of the main queue runs after this call's own. Messages already given to the bus are still
    /// sent.
    virtual void terminate() = 0;
};

}  // namespace corvane
