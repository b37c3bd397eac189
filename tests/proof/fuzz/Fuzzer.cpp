// orvane-fuzz TARGET own|wrong [libFuzzer's arguments]: libFuzzer, led to one of the targets.

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "tests/proof/fuzz/Targets.h"

namespace {
const orvane::test::FuzzTarget* target = nullptr;
auto subject = orvane::test::Subject::own;
}  // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
    using orvane::test::fuzzTargets;
    const std::string_view name = *count > 2 ? (*arguments)[1] : "";
    const auto* const found = std::find_if(fuzzTargets.begin(), fuzzTargets.end(),
                                           [&](const auto& each) { return each.name == name; });
    if (found == fuzzTargets.end()) {
        std::fputs("orvane-fuzz: name a target, and whose code: own or wrong\n", stderr);
        return 2;
    }
    target = found;
    if (std::string_view((*arguments)[2]) == "wrong") subject = orvane::test::Subject::wrong;
    // They are not libFuzzer's, which takes other words for folders of inputs.
    std::copy(*arguments + 3, *arguments + *count + 1, *arguments + 1);
    *count -= 2;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    target->run({reinterpret_cast<const char*>(data), size}, subject);
    return 0;
}
