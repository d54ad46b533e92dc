#include "platform/fatal_error.h"

#include <cstdlib>

#include "platform/system/standard_error_log.h"

namespace corvane {

void fatalError(std::string_view message) {
    StandardErrorLog().log(message);
    std::abort();
}

}  // namespace corvane
