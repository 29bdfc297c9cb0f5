// Text to components to text and back, in all families, for hosts that quote everything and hosts
// that quote what they must. With the environment variable JOINERY_FUZZ_STRICT a refusal by the
// gate alone counts as broken, too.
#include <cstdlib>

#include "fuzz_input.h"
#include "hostile/round_trip_faults.h"

using namespace QB;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isStrict = std::getenv("JOINERY_FUZZ_STRICT") != nullptr;
    const auto gateRefusal = isStrict ? Test::GateRefusal::IsFault : Test::GateRefusal::IsFine;
    const Fuzz::Input input = Fuzz::inputOf(data, size);
    const auto style =
        input.isAlwaysQuoted ? Test::HostStyle::AlwaysQuote : Test::HostStyle::Minimal;
    const std::string fault =
        Test::faultOfRoundTrip(input.text, input.family, input.schema, style, gateRefusal);
    Fuzz::stopIfBroken(fault, input);
    return 0;
}
