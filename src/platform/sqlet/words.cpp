#include "platform/sqlet/words.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/sqlet/word_table.h"

namespace sqlet {
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

enum Family { MySQL = 1, PostgreSQL, Oracle, SQLite, SQLServer, MariaDB };

struct Groups {
    const WordGroup* first;
    std::size_t count;

    const WordGroup* begin() const { return first; }
    const WordGroup* end() const { return first + count; }
};

/// By family - 1.
constexpr Groups familyGroups[] = {
    {mysqlWords, std::size(mysqlWords)},         {postgresqlWords, std::size(postgresqlWords)},
    {oracleWords, std::size(oracleWords)},       {sqliteWords, std::size(sqliteWords)},
    {sqlserverWords, std::size(sqlserverWords)}, {mariadbWords, std::size(mariadbWords)},
};

struct GrammarWord {
    Keyword keyword;
    const char* text;
};

constexpr GrammarWord grammarWords[] = {
#define SQLET_KEYWORD(name, text) {Keyword::name, text},
#include "platform/sqlet/keywords.inc"
#undef SQLET_KEYWORD
};

bool isFamily(int family) {
    return family >= MySQL && family <= MariaDB;
}

using Collected = std::map<std::string, TableWord, std::less<>>;

TableWord& wordIn(Collected& words, std::string_view text) {
    TableWord& word = words[std::string(text)];
    word.text = text;
    return word;
}

void collectGroup(Collected& words, std::size_t family, const WordGroup& group) {
    std::string_view rest = group.words;
    while (!rest.empty()) {
        const std::string_view text = rest.substr(0, rest.find(' '));
        wordIn(words, text).familyFlags[family] = static_cast<std::uint8_t>(group.flags);
        rest.remove_prefix(std::min(text.size() + 1, rest.size()));
    }
}

void settleDialects(TableWord& word) {
    constexpr unsigned barred = reserved | noBareAlias;
    std::copy_n(word.familyFlags.begin(), dialectCount, word.dialectFlags.begin());
    const unsigned mysql = word.familyFlags[MySQL - 1];
    const unsigned mariadb = word.familyFlags[MariaDB - 1];
    word.dialectFlags[0] =
        static_cast<std::uint8_t>(((mysql | mariadb) & ~barred) | (mysql & mariadb & barred));
}

constexpr std::size_t longestWord = 63;

std::uint64_t bytesAt(const char* text, std::size_t count) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text, count);
    return bytes;
}

std::uint64_t byteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

/// @p text is not empty. Inlined, so that the key stays in registers.
[[gnu::always_inline]] inline WordKey keyOf(std::string_view text) {
    // Takes the case of letters away; what else is part of a name stays apart from them.
    constexpr std::uint64_t upperCase = 0xDFDFDFDFDFDFDFDFU;
    const std::size_t length = text.size();
    WordKey key;
    key.length = length;
    if (length >= 8) {
        key.head = bytesAt(text.data(), 8) & upperCase;
        key.tail = bytesAt(text.data() + length - 8, 8) & upperCase;
    } else if (length >= 4) {
        key.head = bytesAt(text.data(), 4) & upperCase;
        key.tail = bytesAt(text.data() + length - 4, 4) & upperCase;
    } else {
        key.head = byteAt(text, 0) & upperCase;
        key.tail = (byteAt(text, length / 2) | byteAt(text, length - 1) << 8U) & upperCase;
    }
    return key;
}

std::uint32_t hashOf(const WordKey& key) {
    constexpr std::uint64_t mix = 0x9E3779B97F4A7C15U;
    const std::uint64_t hash = (key.head * mix ^ (key.tail + key.length)) * mix;
    return static_cast<std::uint32_t>(hash >> 32U);
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

char toUpper(char c) {
    return isLower(c) ? static_cast<char>(c - 'a' + 'A') : c;
}

/// @p word if @p text is that word, in any case. Apart from the search, to keep that a leaf.
[[gnu::noinline]] const TableWord* ifEqual(const TableWord& word, std::string_view text) {
    const bool isEqual = std::equal(word.text.begin(), word.text.end(), text.begin(), text.end(),
                                    [](char upper, char c) { return upper == toUpper(c); });
    return isEqual ? &word : nullptr;
}

bool isInFoldedCase(int family, std::string_view word) {
    const int folding = sqlet_folding(family);
    if (folding == SQLET_FOLDING_LOWER) return std::none_of(word.begin(), word.end(), isUpper);
    if (folding == SQLET_FOLDING_UPPER) return std::none_of(word.begin(), word.end(), isLower);
    return true;
}

}  // namespace

WordTable::WordTable() : m_slots(slotCount) {
    Collected words;
    for (std::size_t family = 0; family < familyCount; ++family) {
        for (const WordGroup& group : familyGroups[family])
            collectGroup(words, family, group);
    }
    for (const GrammarWord& word : grammarWords)
        wordIn(words, word.text).keyword = word.keyword;

    m_words.reserve(words.size());
    for (auto& [text, word] : words) {
        settleDialects(word);
        m_words.push_back(std::move(word));
        enter(static_cast<std::uint16_t>(m_words.size() - 1));
    }
}

void WordTable::enter(std::uint16_t word) {
    const TableWord& entered = m_words[word];
    for (std::size_t family = 0; family < familyCount; ++family) {
        if (entered.familyFlags[family] != 0) m_byFamily[family].push_back(word);
    }
    m_keys.push_back(keyOf(entered.text));
    const std::uint32_t hash = hashOf(m_keys.back());
    std::uint32_t slot = hash % slotCount;
    while (m_slots[slot].word != 0)
        slot = (slot + 1) % slotCount;
    m_slots[slot] = {hash, static_cast<std::uint16_t>(word + 1)};
}

const WordTable& WordTable::instance() {
    static const WordTable table;
    return table;
}

const TableWord* WordTable::find(std::string_view text) const {
    if (text.empty() || text.size() > longestWord) return nullptr;
    const WordKey key = keyOf(text);
    const std::uint32_t hash = hashOf(key);
    std::uint32_t slot = hash % slotCount;
    // No two words have one key, so the first that fits is the only one.
    while (m_slots[slot].word != 0) {
        const std::size_t index = m_slots[slot].word - 1U;
        if (m_slots[slot].hash == hash && m_keys[index] == key)
            return key.isWhole() ? &m_words[index] : ifEqual(m_words[index], text);
        slot = (slot + 1) % slotCount;
    }
    return nullptr;
}

const TableWord* WordTable::at(int family, std::size_t index) const {
    if (!isFamily(family)) return nullptr;
    const std::vector<std::uint16_t>& words = m_byFamily[static_cast<std::size_t>(family - 1)];
    return index < words.size() ? &m_words[words[index]] : nullptr;
}

}  // namespace sqlet

using namespace sqlet;

unsigned sqlet_word_class(int family, const char* word, int length) {
    if (!isFamily(family)) return 0;
    const TableWord* found = WordTable::instance().find(textOf(word, length));
    return found ? found->familyFlags[static_cast<std::size_t>(family - 1)] : 0;
}

const char* sqlet_words(int family, int index, unsigned* flags) {
    if (index < 0) return nullptr;
    const TableWord* word = WordTable::instance().at(family, static_cast<std::size_t>(index));
    if (!word) return nullptr;
    if (flags) *flags = word->familyFlags[static_cast<std::size_t>(family - 1)];
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
