#include "differential/shrinking.h"

#include <algorithm>
#include <cstddef>

namespace QB::Test {
namespace {

class Shrinker {
public:
    Shrinker(StatementTokens tokens, const std::function<bool(const StatementTokens&)>& isStillBad,
             int budget)
        : m_tokens(std::move(tokens)), m_isStillBad(isStillBad), m_budget(budget) {}

    StatementTokens run() {
        bool isSmaller = true;
        while (isSmaller && m_budget > 0)
            isSmaller = tryBrackets() || tryStretches();
        return m_tokens;
    }

private:
    bool accept(StatementTokens candidate) {
        if (candidate.empty() || m_budget-- <= 0 || !m_isStillBad(candidate)) return false;
        m_tokens = std::move(candidate);
        return true;
    }

    StatementTokens without(std::size_t from, std::size_t to) const {
        StatementTokens rest(m_tokens.begin(),
                             m_tokens.begin() + static_cast<std::ptrdiff_t>(from));
        rest.insert(rest.end(), m_tokens.begin() + static_cast<std::ptrdiff_t>(to), m_tokens.end());
        return rest;
    }

    bool tryStretches() {
        for (std::size_t size = m_tokens.size() / 2; size > 0;
             size = size > 8 ? size / 2 : size - 1) {
            for (std::size_t from = 0; from + size <= m_tokens.size(); ++from) {
                if (accept(without(from, from + size))) return true;
            }
        }
        return false;
    }

    static bool opens(const std::string& text) { return text.back() == '('; }

    std::size_t closing(std::size_t open) const {
        int depth = 0;
        for (std::size_t i = open; i < m_tokens.size(); ++i) {
            if (opens(m_tokens[i].text)) ++depth;
            if (m_tokens[i].text == ")" && --depth == 0) return i;
        }
        return m_tokens.size();
    }

    /// A bracket is replaced by its content, or by a number.
    bool tryBrackets() {
        for (std::size_t open = 0; open < m_tokens.size(); ++open) {
            if (!opens(m_tokens[open].text)) continue;
            const std::size_t close = closing(open);
            if (close == m_tokens.size()) continue;
            StatementTokens constant = without(open, close + 1);
            constant.insert(constant.begin() + static_cast<std::ptrdiff_t>(open), {"1", false});
            if (close > open + 1 && accept(constant)) return true;
            StatementTokens content = without(close, close + 1);
            content.erase(content.begin() + static_cast<std::ptrdiff_t>(open));
            if (accept(content)) return true;
        }
        return false;
    }

    StatementTokens m_tokens;
    const std::function<bool(const StatementTokens&)>& m_isStillBad;
    int m_budget;
};

}  // namespace

StatementTokens shrunk(StatementTokens tokens,
                       const std::function<bool(const StatementTokens&)>& isStillBad, int budget) {
    return Shrinker(std::move(tokens), isStillBad, budget).run();
}

}  // namespace QB::Test
