// What libFuzzer calls. TRK_FUZZ_TARGET names the target.
#include "fuzz/targets.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

const fuzz::Target* chosen = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const char* name = std::getenv("TRK_FUZZ_TARGET");
    const auto found =
        std::find_if(fuzz::targets.begin(), fuzz::targets.end(),
                     [&](const fuzz::Target& target) { return name != nullptr && target.name == name; });
    if (found == fuzz::targets.end()) {
        std::fprintf(stderr, "TRK_FUZZ_TARGET has to name one of fuzz/targets.cpp\n");
        std::exit(2);
    }
    chosen = &*found;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    chosen->run({reinterpret_cast<const char*>(data), size});
    return 0;
}
