#include "tools/free_text.h"

#include <algorithm>
#include <iterator>

#include "model/callbacks.h"
#include "model/names.h"
#include "platform/sqlet/lexer.h"
#include "platform/sqlet/names.h"
#include "platform/sqlet/words.h"

namespace QB {

namespace {

/// Whether a word behind @p text would be read as one.
bool leavesNext(const std::string& text, DatabaseType family) {
    const std::string next = text + " x";
    const auto list = sqlet::lex(next, family);
    const auto& tokens = list.tokens;
    return tokens.size() > 1 && tokens[tokens.size() - 2].offset == next.size() - 1 &&
           tokens[tokens.size() - 2].kind == sqlet::TokenKind::Word;
}

bool isName(const sqlet::Token& token) {
    return token.kind == sqlet::TokenKind::Word || token.kind == sqlet::TokenKind::QuotedName;
}

/// What stands before the last dot of a name with dots, or before `.*`.
struct Qualifier {
    sqlet::TokenIndex first = 0;
    sqlet::TokenIndex last = 0;
    std::vector<std::string> names;
};

/// Those in a text, in its order, but for the schemas of functions.
std::vector<Qualifier> qualifiersIn(const std::string& text, const sqlet::TokenList& list,
                                    DatabaseType family) {
    using sqlet::TokenKind;
    std::vector<Qualifier> found;
    for (sqlet::TokenIndex at = 0; at < list.count(); ++at) {
        const bool isFirst = at == 0 || list[at - 1].kind != TokenKind::Dot;
        if (!isFirst || !isName(list[at])) continue;
        Qualifier qualifier = {at, at, {}};
        while (isName(list[at]) && list[at + 1].kind == TokenKind::Dot) {
            qualifier.names.push_back(sqlet::decodedName(text, list[at], family));
            qualifier.last = at;
            at += 2;
        }
        const bool isStar = list[at].kind == TokenKind::Operator && text[list[at].offset] == '*';
        const bool isField = isName(list[at]) && list[at + 1].kind != TokenKind::LeftParen;
        if (!qualifier.names.empty() && (isStar || isField)) found.push_back(std::move(qualifier));
    }
    return found;
}

/// Reads one text for one source.
class SourceRenaming {
public:
    SourceRenaming(const std::string& text, const SourceName& former, DatabaseType family)
        : m_text(text)
        , m_former(former)
        , m_family(family)
        , m_haveCase(namesHaveCase(family))
        , m_list(sqlet::lex(text, family)) {}

    std::optional<std::string> run(TextPlace place, const SourceName& now,
                                   const std::string& written) const {
        std::vector<Qualifier> meant;
        for (Qualifier& each : qualifiersIn(m_text, m_list, m_family)) {
            if (isMeant(each))
                meant.push_back(std::move(each));
            else if (mayBeMeant(each))
                return std::nullopt;
        }
        const bool isNested = hasWord(sqlet::Keyword::Select);
        if (meant.empty()) return m_text;
        if (now.names.empty()) return std::nullopt;
        if ((isNested || place == TextPlace::Source) && !isSure(meant, now, place))
            return std::nullopt;
        std::string renamed = m_text;
        for (auto each = meant.rbegin(); each != meant.rend(); ++each) {
            const auto start = m_list[each->first].offset;
            renamed.replace(start, m_list[each->last].end() - start, written);
        }
        return renamed;
    }

private:
    bool isSame(const std::string& a, const std::string& b) const {
        return isSameName(a, b, m_haveCase);
    }

    bool isMeant(const Qualifier& qualifier) const {
        const auto& names = qualifier.names;
        const auto& full = m_former.names;
        if (names.size() > full.size() || (names.size() == 1 && !m_former.isClear)) return false;
        return std::equal(names.rbegin(), names.rend(), full.rbegin(),
                          [this](const auto& a, const auto& b) { return isSame(a, b); });
    }

    /// An attribute of a field, or one of two sources of the same name.
    bool mayBeMeant(const Qualifier& qualifier) const {
        return isSame(qualifier.names.front(), m_former.names.back());
    }

    /// Whether no source that the text itself has takes part in it.
    bool isSure(const std::vector<Qualifier>& meant, const SourceName& now, TextPlace place) const {
        return !standsAlone(m_former.names.back()) && !standsAlone(now.names.back()) &&
               std::none_of(meant.begin(), meant.end(), [&](const Qualifier& each) {
                   return mayBeSchema(each) || (place == TextPlace::Source && !isInBrackets(each));
               });
    }

    /// Whether @p name occurs without a dot behind it, so that it could be that of a source.
    bool standsAlone(const std::string& name) const {
        for (sqlet::TokenIndex at = 0; at < m_list.count(); ++at) {
            const bool isAlone = m_list[at + 1].kind != sqlet::TokenKind::Dot;
            if (isAlone && isName(m_list[at]) &&
                isSame(sqlet::decodedName(m_text, m_list[at], m_family), name))
                return true;
        }
        return false;
    }

    bool mayBeSchema(const Qualifier& qualifier) const {
        if (qualifier.first == 0) return false;
        const sqlet::Token& before = m_list[qualifier.first - 1];
        return before.keyword == sqlet::Keyword::From || before.keyword == sqlet::Keyword::Join;
    }

    bool isInBrackets(const Qualifier& qualifier) const {
        for (sqlet::TokenIndex at = 0; at < qualifier.first; ++at) {
            const sqlet::TokenIndex partner = m_list.partner[at];
            if (partner != sqlet::noToken && partner > qualifier.last) return true;
        }
        return false;
    }

    bool hasWord(sqlet::Keyword word) const {
        return std::any_of(m_list.tokens.begin(), m_list.tokens.end(),
                           [word](const sqlet::Token& token) { return token.keyword == word; });
    }

    const std::string& m_text;
    const SourceName& m_former;
    const DatabaseType m_family;
    const bool m_haveCase;
    const sqlet::TokenList m_list;
};

/// As the stringifier refers to it.
std::string written(const SourceName& source, const QBDatabaseInfo& info) {
    std::string text;
    if (source.names.empty()) return text;
    const auto first = source.isClear ? std::prev(source.names.end()) : source.names.begin();
    for (auto name = first; name != source.names.end(); ++name) {
        const bool isPlain =
            sqlet_reads_as_name(info.databaseType, name->data(), static_cast<int>(name->size()));
        if (name != first) text += '.';
        text += isPlain
                    ? *name
                    : Callback::formatIdentifier(*name, info.databaseType, info.databaseVersion);
    }
    return text;
}

}  // namespace

std::optional<std::string> withSourceRenamed(const std::string& text, TextPlace place,
                                             const SourceName& former, const SourceName& now,
                                             const QBDatabaseInfo& info) {
    return SourceRenaming(text, former, info.databaseType).run(place, now, written(now, info));
}

std::string withLineEnded(const std::string& text, DatabaseType family) {
    // An open quote or comment of several lines is no better for it.
    const bool isSwallowing = !leavesNext(text, family) && leavesNext(text + '\n', family);
    return isSwallowing ? text + '\n' : text;
}

bool isOnePiece(const std::string& text, DatabaseType family) {
    using sqlet::TokenKind;
    const sqlet::TokenList list = sqlet::lex(text, family);
    sqlet::TokenIndex at = 0;
    while (isName(list[at]) && list[at + 1].kind == TokenKind::Dot)
        at += 2;
    if (isName(list[at])) ++at;
    if (list[at].kind == TokenKind::LeftParen) {
        if (list.partner[at] == sqlet::noToken) return false;
        at = list.partner[at] + 1;
    }
    return at > 0 && at == list.count();
}

}  // namespace QB
