#include "fuzz_input.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "token_mutator.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace QB::Fuzz {

void stopIfBroken(const std::string& fault, const Input& input) {
    if (fault.empty()) return;
    // For hunting: gather what is broken in a file and go on.
    const char* gathered = std::getenv("JOINERY_FUZZ_GATHER");
    std::FILE* out = gathered ? std::fopen(gathered, "a") : stderr;
    std::fprintf(out, "\nBROKEN: %s\nfamily %d, %s quoting, schema '%s', text:\n%s\n",
                 fault.c_str(), input.family, input.isAlwaysQuoted ? "full" : "minimal",
                 input.schema.c_str(), input.text.c_str());
    if (!gathered) std::abort();
    std::fclose(out);
}

namespace {

/// Longer texts are left to the byte mutations: cutting them into tokens each time costs too much.
constexpr std::size_t longestMutated = 20'000;

std::size_t stored(const std::string& text, std::uint8_t* data, std::size_t maxSize) {
    const std::size_t length = std::min(text.size(), maxSize - 1);
    std::memcpy(data + 1, text.data(), length);
    return length + 1;
}

}  // namespace
}  // namespace QB::Fuzz

using namespace QB::Fuzz;

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    if (size < 2 || size > longestMutated || seed % 4 == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    const Input input = inputOf(data, size);
    return stored(TokenMutator(input.dialect(), seed).mutated(input.text), data, maxSize);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* left, std::size_t leftSize,
                                                 const std::uint8_t* right, std::size_t rightSize,
                                                 std::uint8_t* out, std::size_t maxSize,
                                                 unsigned seed) {
    if (leftSize < 2 || rightSize < 2 || leftSize + rightSize > longestMutated) return 0;
    const Input input = inputOf(left, leftSize);
    out[0] = left[0];
    return stored(
        TokenMutator(input.dialect(), seed).crossed(input.text, inputOf(right, rightSize).text),
        out, maxSize);
}
