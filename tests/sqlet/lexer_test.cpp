#include "platform/sqlet/lexer.h"

#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "platform/sqlet/words.h"

using namespace sqlet;

namespace {

enum Dialect { MySQL = 1, PostgreSQL, Oracle, SQLite, SQLServer };

/// A bracket, comma, dot or semicolon shows what it is.
std::string shortName(TokenKind kind) {
    static const std::map<TokenKind, const char*> names = {
        {TokenKind::End, "End"},      {TokenKind::Word, "W"},
        {TokenKind::QuotedName, "Q"}, {TokenKind::String, "S"},
        {TokenKind::Number, "N"},     {TokenKind::Parameter, "P"},
        {TokenKind::Operator, "O"},   {TokenKind::ExecutableComment, "X"},
        {TokenKind::Hint, "H"},       {TokenKind::Bad, "Bad"}};
    const auto found = names.find(kind);
    return found == names.end() ? "" : found->second;
}

std::string_view textOf(std::string_view text, const Token& token) {
    return text.substr(token.offset, token.length);
}

/// The tokens with blanks between: kind, !, if there is an escape, a colon, the text.
std::string tokensOf(std::string_view text, int dialect) {
    const TokenList list = lex(text, dialect);
    std::string written;
    for (TokenIndex i = 0; i < list.count(); ++i) {
        const Token& token = list[i];
        if (i > 0) written += ' ';
        const std::string kind = shortName(token.kind);
        written += kind;
        if (token.flags & TokenIsUnterminated) written += "~";
        if (token.kind != TokenKind::Word && (token.flags & TokenHasEscape)) written += "!";
        if (!kind.empty()) written += ':';
        written += textOf(text, token);
    }
    return written;
}

/// A text and what each of these dialects (digits as in Dialect) reads.
struct Reading {
    const char* dialects;
    const char* text;
    const char* tokens;
};

void expectReadings(const std::vector<Reading>& readings) {
    for (const Reading& reading : readings) {
        for (const char* dialect = reading.dialects; *dialect != '\0'; ++dialect)
            EXPECT_EQ(tokensOf(reading.text, *dialect - '0'), reading.tokens)
                << "dialect " << *dialect << ": " << reading.text;
    }
}

TEST(Lexer, ReadsAnOrdinaryStatementAlikeEverywhere) {
    expectReadings({
        {"12345", "SELECT a.b, 'it''s' x FROM t\r\n\t WHERE a<=1.5 AND(b<>:p);",
         "W:SELECT W:a . W:b , S:'it''s' W:x W:FROM W:t W:WHERE W:a O:<= N:1.5 W:AND ( W:b O:<> "
         "P::p ) ;"},
        {"12345", "", ""},
        {"12345", " \n /* c */ -- d", ""},
        {"12345",
         "\xEF\xBB\xBF"
         "a",
         "W:a"},
        {"12345",
         "a \xEF\xBB\xBF"
         "b",
         "W:a W:\xEF\xBB\xBF"
         "b"},
        // A no-break space is part of a name; the other blanks of ASCII are blanks.
        {"12345",
         "a\xC2\xA0"
         "b a\f\vb",
         "W:a\xC2\xA0"
         "b W:a W:b"},
        {"12345", "SELECT *FROM t", "W:SELECT O:* W:FROM W:t"},
        {"12345", "{d '1'} \\ \x01", "{ W:d S:'1' } Bad:\\ Bad:\x01"},
    });
}

TEST(Lexer, ReadsCommentsByTheRulesOfTheServer) {
    expectReadings({
        {"2345", "5--3\n+1", "N:5 O:+ N:1"},
        {"1", "5--3 5---3 5-- 3\n+1", "N:5 O:- O:- N:3 N:5 O:- O:- O:- N:3 N:5 O:+ N:1"},
        {"12345", "5 --", "N:5"},
        {"1345", "1 -- a\r, 2", "N:1"},
        {"2", "1 -- a\r, 2", "N:1 , N:2"},
        {"134", "1 /* a /* b */ c */", "N:1 W:c O:* O:/"},
        {"25", "1 /* a /* b */ c */ d", "N:1 W:d"},
        {"12345", "1 /*/ 2 */ 3 /**/4/***/5", "N:1 N:3 N:4 N:5"},
        {"1", "1 # a\n2", "N:1 N:2"},
        {"1", "a#b", "W:a"},
        {"12345", "1 /* open", "N:1 Bad~:/* open"},
        {"12345", "1 /*/", "N:1 Bad~:/*/"},
        {"25", "1 /* /* */ x", "N:1 Bad~:/* /* */ x"},
        {"1", "/*! a */ /*!*/ /*M! b */ /*m! b */ /*!40101 a*/",
         "X:/*! a */ X:/*!*/ X:/*M! b */ X:/*!40101 a*/"},
        {"2345", "/*! a */ /*M! b */", ""},
        {"1", "/*+ Set_Var(a=1) */ /*+ INDEX(t) */ /* SET_VAR */", "H:/*+ Set_Var(a=1) */"},
        {"2345", "/*+ SET_VAR(a=1) */", ""},
    });
}

TEST(Lexer, ReadsStringsByTheRulesOfTheServer) {
    expectReadings({
        {"2345", "'a\\' 'b'", "S:'a\\' S:'b'"},
        {"1", "'a\\'b' 1 'a\\\\' 2 '\\", "S!:'a\\'b' N:1 S!:'a\\\\' N:2 Bad~:'\\"},
        {"1", "\"a\" 1 \"a\"\"b\\\"\"", "S:\"a\" N:1 S!:\"a\"\"b\\\"\""},
        {"2345", "\"a\" \"a\"\"b\\\"", "Q:\"a\" Q:\"a\"\"b\\\""},
        {"1", "`a``b\\` x", "Q:`a``b\\` W:x"},
        {"4", "`a``b` [a]]b]", "Q:`a``b` Q:[a] ] W:b ]"},
        {"5", "[a]]b] ``", "Q:[a]]b] Bad:` Bad:`"},
        {"23", "[a]", "[ W:a ]"},
        {"1235", "N'a' 1 n'b'", "S:N'a' N:1 S:n'b'"},
        {"4", "N'a'", "W:N S:'a'"},
        {"12", "x'41', X'', b'01'", "S:x'41' , S:X'' , S:b'01'"},
        {"4", "x'41', b'01'", "S:x'41' , W:b S:'01'"},
        {"124", "x'41''a'", "S:x'41' S:'a'"},
        {"35", "x'41'", "W:x S:'41'"},
        {"2", "E'a\\'b' e'a'", "S!:E'a\\'b' S:e'a'"},
        {"1345", "E'a'", "W:E S:'a'"},
        {"2", "U&'\\0041' u&\"a\" U& 'x' U&x",
         "S!:U&'\\0041' Q!:u&\"a\" W:U O:& S:'x' W:U O:& W:x"},
        {"3", "q'[a'b]' Q'!it's!' nq'(x)' q'é'é' q'<a>>' q x",
         "S:q'[a'b]' S:Q'!it's!' S:nq'(x)' S:q'é'é' S:q'<a>>' W:q W:x"},
        {"3", "q' a'", "W:q S:' a'"},
        {"3", "1 q'[a]", "N:1 Bad~:q'[a]"},
        {"1245", "q'[a]'", "W:q S:'[a]'"},
        {"2", "$$a'b$$ $t$a$b$t$ $é$x$é$ a$b$c $1", "S:$$a'b$$ S:$t$a$b$t$ S:$é$x$é$ W:a$b$c P:$1"},
        {"2", "$t$ a $T$", "Bad~:$t$ a $T$"},
        {"12345", "1 'a", "N:1 Bad~:'a"},
        {"2345", "1 \"a", "N:1 Bad~:\"a"},
        {"45", "[a", "Bad~:[a"},
    });
}

TEST(Lexer, JoinsAdjacentStringsWhereTheServerDoes) {
    expectReadings({
        {"345", "'a'\n'b'", "S:'a' S:'b'"},
        {"1", "'a' 'b' /* c */ \"c\" # d\n'e', 'f'", "S!:'a' 'b' /* c */ \"c\" # d\n'e' , S:'f'"},
        {"1", "'a'/*! */'b'", "S:'a' X:/*! */ S:'b'"},
        {"1", "N'a' 'b' x'41' 'b' 'c' N'd'", "S!:N'a' 'b' S:x'41' S!:'b' 'c' S:N'd'"},
        {"1", "_utf8'a' _latin1 /* c */ 'b' 'c', _utf8 x'41' 'd', _utf8 0x41 'e'",
         "S!:_utf8'a' S!:_latin1 /* c */ 'b' 'c' , S!:_utf8 x'41' S:'d' , S!:_utf8 0x41 S:'e'"},
        {"1", "_foo'a' t._utf8'a' _utf8", "W:_foo S:'a' W:t . W:_utf8 S:'a' W:_utf8"},
        {"2", "'a' 'b'\n'c'", "S:'a' S!:'b'\n'c'"},
        {"2", "'a' -- 'x'\r'b'", "S!:'a' -- 'x'\r'b'"},
        {"2", "'a' /* x */\n'b'", "S:'a' S:'b'"},
        {"2", "E'a'\n'\\'b' 'c\\'", "S!:E'a'\n'\\'b' S:'c\\'"},
        {"2", "'a'\nE'b'", "S:'a' S:E'b'"},
        {"2", "$$a$$\n'b'", "S:$$a$$ S:'b'"},
        {"2", "'a'\n'b", "S:'a' Bad~:'b"},
        {"2", "U&'a'\n'b' x'1f'\n'2'", "S!:U&'a'\n'b' S!:x'1f'\n'2'"},
    });
}

TEST(Lexer, ReadsNumbersWithoutAliasesInThem) {
    expectReadings({
        {"12345", "1 1. .5 1.5e-3 1E+5 1.e5 007", "N:1 N:1. N:.5 N:1.5e-3 N:1E+5 N:1.e5 N:007"},
        {"2345", "1a 1.5a 1e .5x 1é 1e5a", "Bad:1a Bad:1.5a Bad:1e Bad:.5x Bad:1é Bad:1e5a"},
        {"1", "1a 1e 1_000 1é 0X1F 0x 0b12 0x1Fg",
         "W:1a W:1e W:1_000 W:1é W:0X1F W:0x W:0b12 W:0x1Fg"},
        {"1", "1.5a 1e5a 1.5e", "N:1.5 W:a N:1e5 W:a Bad:1.5e"},
        {"1", "0x1F 0b01", "N:0x1F N:0b01"},
        {"245", "0x1F 0XaF", "N:0x1F N:0XaF"},
        {"3", "0x1F", "Bad:0x1F"},
        {"2", "0b01 0o17 0b12 1_000 1__0 1_", "N:0b01 N:0o17 Bad:0b12 N:1_000 Bad:1__0 Bad:1_"},
        {"35", "1_000", "Bad:1_000"},
        {"3", "1f 1.5D 1e5f 1.5fx", "N:1f N:1.5D N:1e5f Bad:1.5fx"},
        {"5", "$1.5 $ $5, $action $1a", "N:$1.5 N:$ N:$5 , P:$action Bad:$1a"},
        // Behind the dot of a bare name MySQL reads a name.
        {"1", "t.1 t.1e5 a.b.1 t .1 `t`.1 t.a+1",
         "W:t . W:1 W:t . W:1e5 W:a . W:b . W:1 W:t N:.1 "
         "Q:`t` N:.1 W:t . W:a O:+ N:1"},
        {"2345", "t.1 1..2", "W:t N:.1 N:1 . N:.2"},
    });
}

TEST(Lexer, ReadsNamesAndParametersByTheRulesOfTheServer) {
    expectReadings({
        {"12345", "_a1 é \xFF\xFE", "W:_a1 W:é W:\xFF\xFE"},
        {"12345", "a$b", "W:a$b"},
        {"1", "$a", "W:$a"},
        {"4", "$a @a :1 ?12 ? #a", "P:$a P:@a P::1 P:?12 P:? Bad:# W:a"},
        {"3", "a#b t@link :1 :new.a &x &&y ?",
         "W:a#b W:t O:@ W:link P::1 P::new . W:a P:&x P:&&y P:?"},
        {"5", "#t ##g a@b# @t @@rowcount dbo..t",
         "W:#t W:##g W:a@b# P:@t P:@@rowcount W:dbo . . W:t"},
        {"1", "@v @a.b @@global.x @'a b' @`c` @\"d\\\"\" @ ?OFFSET",
         "P:@v P:@a.b P:@@global.x P:@'a b' P:@`c` P:@\"d\\\"\" O:@ P:? W:OFFSET"},
        {"1", "@'a", "Bad~:@'a"},
        {"2", "$1 $12a $a :n a::int a[1:2] a[:n] f(a[x(:n)])",
         "P:$1 Bad:$12a Bad:$ W:a P::n W:a O::: W:int W:a [ N:1 O:: N:2 ] W:a [ O:: W:n ] W:f ( "
         "W:a "
         "[ W:x ( P::n ) ] )"},
        // PostgreSQL's drivers have a parameter that the server reads as an operator.
        {"2", "a = ? AND b ? 'c' AND c BETWEEN ? AND ? LIMIT ?",
         "W:a O:= P:? W:AND W:b O:? S:'c' W:AND W:c W:BETWEEN P:? W:AND P:? W:LIMIT P:?"},
        {"2", "f(?, ?) ? 'a' ?| b", "W:f ( P:? , P:? ) O:? S:'a' O:?| W:b"},
    });
}

TEST(Lexer, ReadsTheLongestOperatorButNoneThatTheServerReadsApart) {
    expectReadings({
        {"12345", "a<-1 a>=-1 a*-1", "W:a O:< O:- N:1 W:a O:>= O:- N:1 W:a O:* O:- N:1"},
        {"1345", "5-~3", "N:5 O:- O:~ N:3"},
        {"1345", "a!=-1 a>~1", "W:a O:!= O:- N:1 W:a O:> O:~ N:1"},
        {"145", "a=@v a<@v", "W:a O:= P:@v W:a O:< P:@v"},
        {"1", "a=!b 1<=>1 a&&b a:=1 a->>b",
         "W:a O:= O:! W:b N:1 O:<=> N:1 W:a O:&& W:b W:a O::= N:1 "
         "W:a O:->> W:b"},
        {"2", "a!=-1 a%-1 @-1 a<+1 a=+-+1",
         "W:a O:!=- N:1 W:a O:%- N:1 O:@- N:1 W:a O:< O:+ N:1 W:a "
         "O:= O:+ O:- O:+ N:1"},
        {"2", "a*--b\n1 a*/* c */1 a=/**/b", "W:a O:* N:1 W:a O:* N:1 W:a O:= W:b"},
        {"2", "a<->b a#>>b a@>b a=>b a~*b a`b",
         "W:a O:<-> W:b W:a O:#>> W:b W:a O:@> W:b W:a O:=> W:b "
         "W:a O:~* W:b W:a O:` W:b"},
        {"3", "a^=b a=>b b(+) a||b", "W:a O:^= W:b W:a O:=> W:b W:b ( O:+ ) W:a O:|| W:b"},
        {"4", "a==b a->'$' a->>b a<<b", "W:a O:== W:b W:a O:-> S:'$' W:a O:->> W:b W:a O:<< W:b"},
        {"5", "a!<b a!>b a+=b a::b", "W:a O:!< W:b W:a O:!> W:b W:a O:+= W:b W:a O::: W:b"},
        {"345", "a<=>b", "W:a O:<= O:> W:b"},
    });
}

std::string partnersOf(std::string_view text, int dialect) {
    const TokenList list = lex(text, dialect);
    EXPECT_EQ(list.partner.size(), list.tokens.size());
    std::string written;
    for (TokenIndex i = 0; i < list.count(); ++i) {
        const TokenIndex partner = list.partner[i];
        written += partner == noToken ? "-" : std::to_string(partner);
    }
    return written;
}

TEST(Lexer, PairsBracketsOfOneKind) {
    EXPECT_EQ(partnersOf("(a[1]){}", PostgreSQL), "5-4-2076");
    EXPECT_EQ(partnersOf("a)((b)", PostgreSQL), "---5-3");
    // What does not fit the innermost open bracket belongs to none, and closes none.
    EXPECT_EQ(partnersOf("(])", PostgreSQL), "2-0");
    EXPECT_EQ(partnersOf("([)", PostgreSQL), "---");
    EXPECT_EQ(partnersOf("(')')", PostgreSQL), "2-0");
    EXPECT_EQ(partnersOf("([)])", SQLite), "2-0");
}

/// Blanks and comments are all that may lie between tokens. Found without the lexer: what lies
/// between is lexed by itself, and gives nothing.
void expectWhole(const std::string& text, int dialect) {
    const TokenList list = lex(text, dialect);
    ASSERT_EQ(list.tokens.back().kind, TokenKind::End);
    ASSERT_EQ(list.tokens.back().offset, text.size());
    ASSERT_EQ(list.tokens.back().length, 0U);
    std::uint32_t reached = text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    for (TokenIndex i = 0; i <= list.count(); ++i) {
        const Token& token = list[i];
        ASSERT_GE(token.offset, reached) << text;
        ASSERT_TRUE(i == list.count() || token.length > 0) << text;
        const std::string gap = text.substr(reached, token.offset - reached);
        ASSERT_EQ(tokensOf(gap, dialect), "") << "dialect " << dialect << ": " << text;
        constexpr std::string_view starts = " \t\n\v\f\r-/#";
        const bool begins = gap.empty() || starts.find(gap.front()) != starts.npos;
        ASSERT_TRUE(begins) << text;
        if (i > 0) {
            const bool touches = list[i - 1].flags & TokenTouchesNext;
            ASSERT_EQ(touches, gap.empty()) << text;
        }
        const TokenIndex partner = list.partner[i];
        ASSERT_TRUE(partner == noToken || list.partner[partner] == i) << text;
        reached = token.end();
    }
}

TEST(Lexer, LosesNoByteOfAnyText) {
    std::istringstream visible(
        "' \" ` [ ] ( ) { } \\ /* */ -- # $ $$ $t$ @ @@ ? : :: 1 1a 1e . .5 0x 0b 1_ e5 q' nq' U& "
        "E' "
        "N' x' a \xC3\xA9 _utf8 SELECT + - < = > ! | & ~ % , ; /*! \x80 \xFF \xED\xA0\x80 \x01 "
        "\xEF\xBB\xBF");
    std::vector<std::string> pieces(std::istream_iterator<std::string>(visible), {});
    pieces.insert(pieces.end(), {"\n", "\r", " ", "\t", "/*+ set_var", std::string(1, '\0')});
    std::mt19937 random(20240501);
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (std::size_t i = random() % 12; i > 0; --i)
            text += random() % 8 == 0 ? std::string(1, static_cast<char>(random() % 256))
                                      : pieces[random() % pieces.size()];
        for (int dialect = MySQL; dialect <= SQLServer; ++dialect)
            expectWhole(text, dialect);
        if (HasFatalFailure()) return;
    }
}

}  // namespace
