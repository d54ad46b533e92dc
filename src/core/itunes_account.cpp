#include "core/itunes_account.h"

#include <utility>

namespace corvane {

ITunesAccount::ITunesAccount(std::string vendorID, std::string name)
    : vendorID_(std::move(vendorID)), name_(std::move(name)) {}

}  // namespace corvane
