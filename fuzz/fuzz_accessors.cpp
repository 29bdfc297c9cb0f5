// The parser library by itself: every accessor on whatever comes, held against what its header
// promises.
#include "fuzz_input.h"
#include "sqlet/accessor_dump.h"

using namespace QB;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::Input input = Fuzz::inputOf(data, size);
    const char* schema = input.isAlwaysQuoted ? input.schema.c_str() : nullptr;
    Fuzz::stopIfBroken(sqlet_test::faultOfAccessors(input.dialect(), input.text, schema), input);
    return 0;
}
