#pragma once

#include <stdexcept>

namespace QB::Cli {

/// A line of a script that cannot be carried out, with the reason for the user. Thrown by whoever
/// finds out, caught where the line is known.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace QB::Cli
