#include "frame/sql_highlight_lexer.h"

#include <QtTest>

namespace QB {
namespace {

QString mark(SqlTokenKind kind) {
    return QStringLiteral("KFSNCI").at(static_cast<int>(kind));
}

/// The text with every token as "K<SELECT>"; what is open goes on from line to line.
QString marked(DatabaseType family, const QString& text) {
    const SqlHighlightLexer lexer(family);
    SqlLexState state;
    QStringList result;
    const QStringList lines = text.split('\n');
    for (const QString& line : lines) {
        QVector<SqlToken> tokens;
        const SqlLexState followed = lexer.lexLine(line, state, nullptr);
        state = lexer.lexLine(line, state, &tokens);
        if (followed != state) return "the state depends on whether tokens are wanted";
        QString out;
        int end = 0;
        for (const SqlToken& token : qAsConst(tokens)) {
            out += line.mid(end, token.start - end);
            end = token.start + token.length;
            out += mark(token.kind) + '<' + line.mid(token.start, token.length) + '>';
        }
        result.append(out + line.mid(end));
    }
    return result.join('\n');
}

}  // namespace

class SqlHighlightLexerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachFamilyReadsItsOwnNotation_data() {
        QTest::addColumn<int>("family");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        const auto add = [](const char* name, DatabaseType family, const char* text,
                            const char* expected) {
            QTest::newRow(name) << int(family) << QString(text) << QString(expected);
        };
        add("words and numbers", DatabaseTypeSQLite, "SELECT a1, 12, 1.5e-3 from t where b is null",
            "K<SELECT> a1, N<12>, N<1.5e-3> K<from> t K<where> b K<is> K<null>");
        add("an aggregate is one only before its bracket", DatabaseTypePostgreSQL,
            "select count (*), max", "K<select> F<count> (*), max");
        add("a word at a dot is a name", DatabaseTypeMySQL, "order.select, t.from",
            "order.select, t.from");
        add("minus is no part of a number", DatabaseTypeMySQL, "a-1-2e", "a-N<1>-N<2e>");
        add("a doubled quote stays inside", DatabaseTypeOracle, "'it''s' x", "S<'it''s'> x");
        add("a string goes on over lines", DatabaseTypeSQLite, "'a\nselect\n' select",
            "S<'a>\nS<select>\nS<'> K<select>");
        add("a comment over lines ends once", DatabaseTypeMySQL, "/* a\n/* b */ select",
            "C</* a>\nC</* b */> K<select>");
        add("PostgreSQL nests comments", DatabaseTypePostgreSQL, "/* a /* b */\nc */ select",
            "C</* a /* b */>\nC<c */> K<select>");
        add("SQL Server nests comments", DatabaseTypeSQLServer, "/*/*/ */*/ select",
            "C</*/*/ */*/> K<select>");
        add("dashes", DatabaseTypePostgreSQL, "1--2 select", "N<1>C<--2 select>");
        add("MySQL needs a blank after dashes", DatabaseTypeMySQL, "1--2 -- c",
            "N<1>--N<2> C<-- c>");
        add("MySQL dashes at the end of the line", DatabaseTypeMySQL, "--\nselect",
            "C<-->\nK<select>");
        add("MySQL hash", DatabaseTypeMariaDB, "a # select 'b\nselect",
            "a C<# select 'b>\nK<select>");
        add("a hash elsewhere", DatabaseTypeSQLServer, "#temp select", "#temp K<select>");
        add("MySQL backslash", DatabaseTypeMySQL, "'a\\'b' \"c\\\"d\" x",
            "S<'a\\'b'> S<\"c\\\"d\"> x");
        add("backslash before a line break", DatabaseTypeMariaDB, "'a\\\n' x", "S<'a\\>\nS<'> x");
        add("no backslash in SQLite", DatabaseTypeSQLite, "'a\\' y'", "S<'a\\'> yS<'>");
        add("PostgreSQL escapes only in E strings", DatabaseTypePostgreSQL, "'a\\' E'b\\'c' x",
            "S<'a\\'> S<E'b\\'c'> x");
        add("quoted names", DatabaseTypePostgreSQL, "\"a\"\"select\" x", "I<\"a\"\"select\"> x");
        add("backticks", DatabaseTypeMySQL, "`a``select` `b\\` x", "I<`a``select`> I<`b\\`> x");
        add("brackets", DatabaseTypeSQLServer, "[a]]select] x[1]", "I<[a]]select]> xI<[1]>");
        add("SQLite's brackets know no escape", DatabaseTypeSQLite, "[a]]select",
            "I<[a]>]K<select>");
        add("no brackets in PostgreSQL", DatabaseTypePostgreSQL, "x[1]", "x[N<1>]");
        add("dollar quotes", DatabaseTypePostgreSQL, "$$ it's\nselect $$ select $1",
            "S<$$ it's>\nS<select $$> K<select> $N<1>");
        add("tagged dollar quotes", DatabaseTypePostgreSQL, "$q$ a $$ b\n$qq$ $q$ select",
            "S<$q$ a $$ b>\nS<$qq$ $q$> K<select>");
        add("Oracle's alternative quotes", DatabaseTypeOracle, "q'[it's]' nq'!a'!' select",
            "S<q'[it's]'> S<nq'!a'!'> K<select>");
        add("prefixes", DatabaseTypeMariaDB, "N'ü' X'1F' en'a'", "S<N'ü'> S<X'1F'> enS<'a'>");
        add("what is no prefix", DatabaseTypeSQLServer, "N'a' X'1F'", "S<N'a'> XS<'1F'>");
        add("escapes by Unicode", DatabaseTypePostgreSQL, "U&'\\0041' u&\"a\" U& 'x'",
            "S<U&'\\0041'> I<u&\"a\"> U& S<'x'>");
        add("umlauts and emoji", DatabaseTypePostgreSQL, "größe 😀 'ä😀' select",
            "größe 😀 S<'ä😀'> K<select>");
        add("hexadecimal", DatabaseTypeMySQL, "0x1F+1 1e+5", "N<0x1F>+N<1> N<1e+5>");
        add("nothing is open after a broken end", DatabaseTypeSQLite, "'a", "S<'a>");
        add("a family without words", DatabaseTypeMongoDB, "select 'a' -- b",
            "select S<'a'> C<-- b>");
    }

    void eachFamilyReadsItsOwnNotation() {
        QFETCH(int, family);
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(marked(DatabaseType(family), text), expected);
    }
};

}  // namespace QB

QTEST_APPLESS_MAIN(QB::SqlHighlightLexerTest)
#include "sql_highlight_lexer_test.moc"
