#include <optional>

#include "core/gzip_codec.h"
#include "fuzz_input.h"

namespace {

// Lower than the program's own, so that the limit is met and the fuzzer's memory bound holds it to account.
constexpr std::size_t maximumSize = std::size_t{256} << 10;

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane;
    const Bytes input(data, data + size);
    const std::optional<Bytes> unpacked = gunzippedData(input, maximumSize);
    if (!isGzippedData(input)) {
        CORVANE_EXPECT(unpacked == input);
        const std::optional<Bytes> packed = gzippedData(input);
        CORVANE_EXPECT(packed);
        CORVANE_EXPECT(gunzippedData(*packed) == input);
        return 0;
    }
    if (unpacked)
        CORVANE_EXPECT(unpacked->size() <= maximumSize);
    return 0;
}
