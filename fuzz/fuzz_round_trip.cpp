// Text to components to text and back, in all families, for hosts that quote everything and hosts
// that quote what they must.
#include "fuzz_input.h"
#include "hostile/round_trip_faults.h"

using namespace QB;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::Input input = Fuzz::inputOf(data, size);
    const auto style =
        input.isAlwaysQuoted ? Test::HostStyle::AlwaysQuote : Test::HostStyle::Minimal;
    Fuzz::stopIfBroken(Test::faultOfRoundTrip(input.text, input.family, input.schema, style),
                       input);
    return 0;
}
