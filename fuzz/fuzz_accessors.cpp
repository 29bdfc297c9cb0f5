// The parser library by itself: every accessor on whatever comes, held against what its header
// promises.
#include "fuzz_input.h"
#include "hostile/accessor_faults.h"

using namespace QB;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::Input input = Fuzz::inputOf(data, size);
    Fuzz::stopIfBroken(Test::faultOfAccessors(input.dialect(), input.text), input);
    return 0;
}
