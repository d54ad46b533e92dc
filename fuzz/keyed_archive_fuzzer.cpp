// The stored account list, as a Mac or anybody else may have written it.

#include <optional>

#include "core/itunes_account_archive.h"
#include "fuzz_input.h"

namespace {

bool haveEqualFields(const corvane::ITunesAccount& one, const corvane::ITunesAccount& other) {
    return one.vendorID() == other.vendorID() && one.email() == other.email() &&
           one.password() == other.password() && one.name() == other.name();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto accounts = corvane::unarchivedAccountList({data, size});
    if (!accounts)
        return 0;
    const auto again = corvane::unarchivedAccountList(corvane::archivedAccountList(*accounts));
    CORVANE_EXPECT(again);
    CORVANE_EXPECT(again->size() == accounts->size());
    for (std::size_t index = 0; index < accounts->size(); ++index)
        CORVANE_EXPECT(haveEqualFields(*accounts->at(index), *again->at(index)));
    return 0;
}
