#include "apps/joinery-desk/long_lines.h"

#include "frame/sql_highlight_lexer.h"

namespace QB::Desk {
namespace {

constexpr int brokenWidth = 200;  // of the lines that are made of an overlong one

/// Breaks one line, of which the tokens are known.
class LineBreaker {
public:
    LineBreaker(const QString& line, QString& result) : m_line(line), m_result(result) {}

    void run(const QVector<SqlToken>& tokens) {
        int end = 0;  // of the token before
        for (const SqlToken& token : tokens) {
            breakBehindCommas(end, token.start);
            const bool isKeyword = token.kind == SqlTokenKind::Keyword;
            if (isKeyword && token.start > 0 && m_line[token.start - 1] == QLatin1Char(' '))
                breakAt(token.start);
            end = token.start + token.length;
        }
        breakBehindCommas(end, m_line.size());
        m_result += m_line.mid(m_start);
    }

private:
    void breakBehindCommas(int from, int to) {
        for (int i = from; i < to; ++i)
            if (m_line[i] == QLatin1Char(',')) breakAt(i + 1);
    }

    void breakAt(int position) {
        if (position - m_start < brokenWidth) return;
        m_result += m_line.mid(m_start, position - m_start) + QLatin1Char('\n');
        m_start = position;
    }

    const QString& m_line;
    QString& m_result;
    int m_start = 0;  // of what is not written yet
};

bool hasLongLine(const QString& text) {
    for (int start = 0; start < text.size();) {
        int end = text.indexOf(QLatin1Char('\n'), start);
        if (end < 0) end = text.size();
        if (end - start > longestLine) return true;
        start = end + 1;
    }
    return false;
}

}  // namespace

QString withBrokenLines(const QString& text, DatabaseType family) {
    if (!hasLongLine(text)) return text;
    const SqlHighlightLexer lexer(family);
    SqlLexState state;
    QString result;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (&line != &lines.first()) result += QLatin1Char('\n');
        QVector<SqlToken> tokens;
        const bool isLong = line.size() > longestLine;
        state = lexer.lexLine(line, state, isLong ? &tokens : nullptr);
        isLong ? LineBreaker(line, result).run(tokens) : void(result += line);
    }
    return result;
}

}  // namespace QB::Desk
