#pragma once

#include <random>
#include <string>
#include <vector>

#include "model/vocabulary.h"

namespace QB::Test {

/// Random choices, the same on every machine for the same seed.
class Dice {
public:
    explicit Dice(unsigned seed) : m_engine(seed) {}

    /// From 0 to @p bound - 1.
    unsigned below(std::size_t bound) { return static_cast<unsigned>(m_engine() % bound); }
    bool chance(unsigned percent) { return below(100) < percent; }

    template <typename T>
    const T& pick(const std::vector<T>& from) {
        return from[below(from.size())];
    }

private:
    std::mt19937 m_engine;
};

struct StatementToken {
    std::string text;
    bool isKeyword = false;  ///< may be written in any case
};

using StatementTokens = std::vector<StatementToken>;

StatementTokens& operator+=(StatementTokens& tokens, const StatementTokens& more);
StatementTokens& operator+=(StatementTokens& tokens, const std::string& text);

/// One blank between all tokens.
std::string plainText(const StatementTokens& tokens);

/// The same statement as a careless hand would write it: keywords in any case, comments and line
/// breaks (as tokens of their own), blanks left out at brackets and commas.
StatementTokens oddlyWritten(const StatementTokens& tokens, DatabaseType family, unsigned seed);

}  // namespace QB::Test
