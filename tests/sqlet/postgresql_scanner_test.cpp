// The lexer against PostgreSQL's own scanner, where that is installed as a library: the same
// texts, the same tokens. What differs on purpose is kept out of the texts: `1..2`, parameters of
// drivers, numbers of later versions, the prefix of N'..' (a token of its own there).
#ifdef JOINERY_HAS_PG_QUERY
#include <gtest/gtest.h>
#include <pg_query.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "platform/sqlet/lexer.h"

using namespace sqlet;

namespace {

constexpr int postgresql = 2;

/// Reads the encoded ScanResult of pg_query.proto, as far as it matters here.
class ScanResultReader {
public:
    explicit ScanResultReader(const PgQueryProtobuf& encoded)
        : m_bytes(encoded.data, encoded.len) {}

    /// "first-end" of each token but comments, with a blank behind.
    std::string tokens() {
        std::string written;
        while (!isAtEnd()) {
            const unsigned tag = number();
            const unsigned value = number();
            if (tag == tokenTag) written += token(m_at + value);
        }
        return written;
    }

private:
    static constexpr unsigned tokenTag = 2U << 3U | 2U;

    bool isAtEnd() const { return m_at >= m_bytes.size(); }

    unsigned number() {
        unsigned value = 0;
        for (unsigned shift = 0;; shift += 7) {
            const auto byte = static_cast<unsigned char>(m_bytes[m_at++]);
            value |= (byte & 0x7FU) << shift;
            if (byte < 0x80) return value;
        }
    }

    std::string token(std::size_t end) {
        constexpr unsigned lineComment = 275;
        constexpr unsigned blockComment = 276;
        unsigned fields[6] = {};
        while (m_at < end) {
            const unsigned tag = number();
            const unsigned value = number();
            if (tag >> 3U < std::size(fields)) fields[tag >> 3U] = value;
        }
        if (fields[4] == lineComment || fields[4] == blockComment) return "";
        return std::to_string(fields[1]) + "-" + std::to_string(fields[2]) + " ";
    }

    const std::string_view m_bytes;
    std::size_t m_at = 0;
};

/// "error" if the scanner refuses the text.
std::string scannedByPostgreSQL(const std::string& text) {
    const PgQueryScanResult result = pg_query_scan(text.c_str());
    const std::string tokens = result.error ? "error" : ScanResultReader(result.pbuf).tokens();
    pg_query_free_scan_result(result);
    return tokens;
}

std::string lexed(const std::string& text) {
    const TokenList list = lex(text, postgresql);
    std::string written;
    for (TokenIndex i = 0; i < list.count(); ++i) {
        // PostgreSQL passes single bytes on that its grammar knows nothing of.
        const bool isLone = list[i].length == 1 && !(list[i].flags & TokenIsUnterminated);
        if (list[i].kind == TokenKind::Bad && !isLone) return "error";
        written += std::to_string(list[i].offset) + "-" + std::to_string(list[i].end()) + " ";
    }
    return written;
}

/// Strings go on behind a line comment, on the server; the library makes a token of the comment.
bool isJoinedAcrossComment(const std::string& text) {
    const std::vector<Token> tokens = lex(text, postgresql).tokens;
    return std::any_of(tokens.begin(), tokens.end(), [&](const Token& token) {
        const std::string read = text.substr(token.offset, token.length);
        return token.kind == TokenKind::String && read.find("--") != std::string::npos;
    });
}

TEST(Lexer, ReadsTheTokensThatPostgreSQLReads) {
    const std::vector<std::string> pieces = {
        "'",   "'",      "\"a", "\"", "[",   "]",  "(",  ")",   "*",    "/*",   "*/",       "--",
        "\n",  "\r",     " ",   " ",  "\t",  "#",  "@",  " $$", " $t$", " $1 ", "?",        "::",
        ":= ", "1",      "15",  ".5", "1e5", "E'", "x'", "b'",  "a",    "ab",   "\xC3\xA9", "+",
        "-",   "SELECT", "<",   "=",  ">",   "!",  "|",  "&",   "~",    "%",    "^",        "`",
        "/",   "\\",     ",",   ";",  "e",   "e+", "=>", "<=",  "1a",   "E",    " U& "};
    std::mt19937 random(1504);
    int read = 0;
    for (int round = 0; round < 100000; ++round) {
        std::string text;
        for (std::size_t i = random() % 10; i > 0; --i)
            text += pieces[random() % pieces.size()];
        // An empty name is read, and refused only then.
        if (text.find("\"\"") != std::string::npos || isJoinedAcrossComment(text)) continue;
        const std::string expected = scannedByPostgreSQL(text);
        ASSERT_EQ(lexed(text), expected) << text;
        read += expected != "error" ? 1 : 0;
    }
    EXPECT_GT(read, 10000);
}

}  // namespace
#else
#include <gtest/gtest.h>

TEST(PostgreSqlScanner, NeedsItsLibrary) {
    GTEST_SKIP() << "libpg_query is not installed: the lexer is not held against PostgreSQL's own";
}
#endif
