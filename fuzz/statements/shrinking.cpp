#include "fuzz/statements/shrinking.h"

#include <vector>

#include "platform/sqlet/lexer.h"

namespace QB::Fuzz {
namespace {

using Tokens = std::vector<std::string>;

std::string textOf(const Tokens& tokens) {
    std::string text;
    for (const std::string& token : tokens)
        text += (text.empty() ? "" : " ") + token;
    return text;
}

class Shrinker {
public:
    Shrinker(Tokens tokens, const std::function<bool(const std::string&)>& isStillBad, int budget)
        : m_tokens(std::move(tokens)), m_isStillBad(isStillBad), m_budget(budget) {}

    Tokens run() {
        while (m_budget > 0 && (tryBrackets() || tryStretches())) {
        }
        return m_tokens;
    }

private:
    bool accept(Tokens candidate) {
        if (candidate.empty() || m_budget-- <= 0 || !m_isStillBad(textOf(candidate))) return false;
        m_tokens = std::move(candidate);
        return true;
    }

    /// The tokens with @p by in place of those from @p from to before @p to.
    Tokens with(std::size_t from, std::size_t to, const Tokens& by) const {
        const auto at = [this](std::size_t i) {
            return m_tokens.begin() + static_cast<std::ptrdiff_t>(i);
        };
        Tokens rest(m_tokens.begin(), at(from));
        rest.insert(rest.end(), by.begin(), by.end());
        rest.insert(rest.end(), at(to), m_tokens.end());
        return rest;
    }

    bool tryStretches() {
        for (std::size_t size = m_tokens.size() / 2; size > 0;
             size = size > 8 ? size / 2 : size - 1) {
            for (std::size_t from = 0; from + size <= m_tokens.size(); ++from)
                if (accept(with(from, from + size, {}))) return true;
        }
        return false;
    }

    std::size_t closing(std::size_t open) const {
        int depth = 0;
        for (std::size_t i = open; i < m_tokens.size(); ++i) {
            if (m_tokens[i] == "(") ++depth;
            if (m_tokens[i] == ")" && --depth == 0) return i;
        }
        return m_tokens.size();
    }

    /// A bracket is replaced by a number, or by its content.
    bool tryBrackets() {
        for (std::size_t open = 0; open < m_tokens.size(); ++open) {
            const std::size_t close = m_tokens[open] == "(" ? closing(open) : m_tokens.size();
            if (close == m_tokens.size()) continue;
            const Tokens content(m_tokens.begin() + static_cast<std::ptrdiff_t>(open) + 1,
                                 m_tokens.begin() + static_cast<std::ptrdiff_t>(close));
            if (!content.empty() && accept(with(open, close + 1, {"1"}))) return true;
            if (accept(with(open, close + 1, content))) return true;
        }
        return false;
    }

    Tokens m_tokens;
    const std::function<bool(const std::string&)>& m_isStillBad;
    int m_budget;
};

}  // namespace

std::string shrunk(const std::string& text, int dialect,
                   const std::function<bool(const std::string&)>& isStillBad, int budget) {
    const sqlet::TokenList list = sqlet::lex(text, dialect);
    Tokens tokens;
    for (std::size_t i = 0; i < list.count(); ++i) {
        const sqlet::Token& token = list.tokens[i];
        std::string written = text.substr(token.offset, token.length);
        // With blanks around it a qualifier or a call may be something else.
        const bool isGlued = i > 0 && (list.tokens[i - 1].flags & sqlet::TokenTouchesNext) &&
                             (written == "." || tokens.back().back() == '.');
        isGlued ? tokens.back() += written : tokens.emplace_back(written);
    }
    if (!isStillBad(textOf(tokens))) return text;
    return textOf(Shrinker(std::move(tokens), isStillBad, budget).run());
}

}  // namespace QB::Fuzz
