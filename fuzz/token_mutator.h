#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace QB::Fuzz {

/// Changes SQL text token by token, so that what comes out still looks like SQL: bytes alone lead a
/// fuzzer to the same few messages again and again.
class TokenMutator {
public:
    /// @p dialect is the one whose lexer cuts the text.
    TokenMutator(int dialect, std::uint32_t seed) : m_dialect(dialect), m_random(seed) {}

    /// @p text after one to four changes: tokens and runs of them deleted, doubled, swapped, moved
    /// and bracketed, words and whole phrases put in.
    std::string mutated(std::string text);

    /// The beginning of @p left and the end of @p right, or a run of @p right put into @p left.
    std::string crossed(const std::string& left, const std::string& right);

private:
    struct Stretch {
        std::size_t begin;
        std::size_t end;
    };

    std::string changed(const std::string& text);
    /// One token, or a bracket with what is in it, or a short run.
    Stretch anyStretch(const std::string& text);
    std::string anyPiece();
    std::size_t below(std::size_t n) { return n ? m_random() % n : 0; }

    int m_dialect;
    std::minstd_rand m_random;
};

}  // namespace QB::Fuzz
