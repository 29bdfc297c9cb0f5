#include "platform/sqlet/words.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr unsigned reserved = SQLET_WORD_RESERVED;
constexpr unsigned noBareAlias = SQLET_WORD_NO_BARE_ALIAS;
constexpr unsigned constant = SQLET_WORD_CONSTANT;
constexpr unsigned keyword = SQLET_WORD_KEYWORD;
constexpr unsigned function = SQLET_WORD_FUNCTION;

/// Words of one kind, in upper case, with blanks between.
struct WordGroup {
    unsigned flags;
    std::string_view words;
};

// clang-format off
constexpr WordGroup mysqlWords[] = {
#include "platform/sqlet/words_mysql.inc"
};
constexpr WordGroup postgresqlWords[] = {
#include "platform/sqlet/words_postgresql.inc"
};
constexpr WordGroup oracleWords[] = {
#include "platform/sqlet/words_oracle.inc"
};
constexpr WordGroup sqliteWords[] = {
#include "platform/sqlet/words_sqlite.inc"
};
constexpr WordGroup sqlserverWords[] = {
#include "platform/sqlet/words_sqlserver.inc"
};
constexpr WordGroup mariadbWords[] = {
#include "platform/sqlet/words_mariadb.inc"
};
// clang-format on

struct Word {
    std::string text;
    unsigned flags;
};

/// The words of one family, in alphabetical order.
class WordTable {
public:
    template <std::size_t N>
    explicit WordTable(const WordGroup (&groups)[N]) {
        for (const WordGroup& group : groups)
            addGroup(group);
        std::sort(m_words.begin(), m_words.end(),
                  [](const Word& a, const Word& b) { return a.text < b.text; });
    }

    const Word* at(std::size_t index) const {
        return index < m_words.size() ? &m_words[index] : nullptr;
    }

    /// @p text in upper case.
    const Word* find(std::string_view text) const {
        const auto found = std::lower_bound(
            m_words.begin(), m_words.end(), text,
            [](const Word& word, std::string_view wanted) { return word.text < wanted; });
        return found != m_words.end() && found->text == text ? &*found : nullptr;
    }

private:
    void addGroup(const WordGroup& group) {
        std::string_view rest = group.words;
        while (!rest.empty()) {
            const std::string_view word = rest.substr(0, rest.find(' '));
            m_words.push_back({std::string(word), group.flags});
            rest.remove_prefix(std::min(word.size() + 1, rest.size()));
        }
    }

    std::vector<Word> m_words;
};

enum Family { MySQL = 1, PostgreSQL, Oracle, SQLite, SQLServer, MariaDB };

bool isFamily(int family) {
    return family >= MySQL && family <= MariaDB;
}

const WordTable* tableOf(int family) {
    static const std::array<WordTable, 6> tables = {
        WordTable(mysqlWords),  WordTable(postgresqlWords), WordTable(oracleWords),
        WordTable(sqliteWords), WordTable(sqlserverWords),  WordTable(mariadbWords),
    };
    return isFamily(family) ? &tables[static_cast<std::size_t>(family - MySQL)] : nullptr;
}

// Not those of <cctype>, which follow the locale: only ASCII letters fold in keywords.
bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}
bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isWordPart(char c) {
    return isLower(c) || isUpper(c) || isDigit(c) || c == '_';
}

std::string_view textOf(const char* word, int length) {
    return word && length > 0 ? std::string_view(word, static_cast<std::size_t>(length))
                              : std::string_view();
}

bool isInFoldedCase(int family, std::string_view word) {
    const int folding = sqlet_folding(family);
    if (folding == SQLET_FOLDING_LOWER) return std::none_of(word.begin(), word.end(), isUpper);
    if (folding == SQLET_FOLDING_UPPER) return std::none_of(word.begin(), word.end(), isLower);
    return true;
}

}  // namespace

unsigned sqlet_word_class(int family, const char* word, int length) {
    constexpr std::size_t longestWord = 63;
    const WordTable* table = tableOf(family);
    const std::string_view text = textOf(word, length);
    if (!table || text.size() > longestWord) return 0;

    char upper[longestWord];
    std::transform(text.begin(), text.end(), upper,
                   [](char c) { return isLower(c) ? static_cast<char>(c - 'a' + 'A') : c; });
    const Word* found = table->find(std::string_view(upper, text.size()));
    return found ? found->flags : 0;
}

const char* sqlet_words(int family, int index, unsigned* flags) {
    const WordTable* table = tableOf(family);
    const Word* word = table && index >= 0 ? table->at(static_cast<std::size_t>(index)) : nullptr;
    if (!word) return nullptr;
    if (flags) *flags = word->flags;
    return word->text.c_str();
}

int sqlet_folding(int family) {
    if (family == PostgreSQL) return SQLET_FOLDING_LOWER;
    if (family == Oracle) return SQLET_FOLDING_UPPER;
    return SQLET_FOLDING_NONE;
}

int sqlet_is_plain_word(int family, const char* word, int length) {
    const std::string_view text = textOf(word, length);
    if (!isFamily(family) || text.empty() || isDigit(text.front())) return 0;
    if (family == Oracle && text.front() == '_') return 0;
    return std::all_of(text.begin(), text.end(), isWordPart);
}

int sqlet_reads_as_name(int family, const char* word, int length) {
    constexpr unsigned hasOtherMeaning = SQLET_WORD_RESERVED | SQLET_WORD_CONSTANT;
    if (!sqlet_is_plain_word(family, word, length)) return 0;
    if (sqlet_word_class(family, word, length) & hasOtherMeaning) return 0;
    return isInFoldedCase(family, textOf(word, length));
}
