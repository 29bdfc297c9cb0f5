#include "platform/sqlet/grammar.h"

// Expressions are read to find where they end, not what they mean: operands and operators by turns.

namespace sqlet {

namespace {

using K = Keyword;
using T = TokenKind;

constexpr int maxIntervalDepth = 200;

constexpr KeywordSet intervalUnits = {K::Year, K::Month, K::Day, K::Hour, K::Minute, K::Second};

/// Those behind an expression, in MySQL.
constexpr KeywordSet expressionUnits = intervalUnits.with(
    {K::Microsecond, K::Week, K::Quarter, K::SecondMicrosecond, K::MinuteMicrosecond,
     K::MinuteSecond, K::HourMicrosecond, K::HourSecond, K::HourMinute, K::DayMicrosecond,
     K::DaySecond, K::DayMinute, K::DayHour, K::YearMonth});

/// Words that cannot be operands, in any dialect: an expression in front of them is missing.
constexpr KeywordSet neverOperands = {
    K::From,  K::Where, K::Group, K::Having, K::Order, K::Union,   K::Except, K::Intersect,
    K::And,   K::Or,    K::In,    K::Is,     K::Like,  K::Between, K::As,     K::On,
    K::Using, K::Then,  K::When,  K::Else,   K::End,   K::Select,  K::Into,
};

}  // namespace

TokenSpan Grammar::expression(Reach reach) {
    const TokenIndex first = m_position;
    AfterOperand then = AfterOperand::WantsOperand;
    while (then != AfterOperand::Ends) {
        if (then == AfterOperand::WantsOperand) operand();
        then = afterOperand(reach);
    }
    return {first, m_position - 1};
}

void Grammar::operand() {
    prefixes();
    primary();
}

void Grammar::prefixes() {
    for (;; advance()) {
        const Token& token = here();
        if (token.kind == T::Operator) {
            const std::string_view symbol = m_parser.textOf(m_position);
            const std::string_view all = m_dialect.prefixes;
            const std::size_t found = all.find(symbol);
            const bool isWhole =
                found != std::string_view::npos && (found == 0 || all[found - 1] == ' ') &&
                (found + symbol.size() == all.size() || all[found + symbol.size()] == ' ');
            if (!isWhole) return;
        } else if (token.kind != T::Word ||
                   (token.keyword != K::Not && !m_dialect.prefixWords.contains(token.keyword))) {
            return;
        }
    }
}

void Grammar::primary() {
    switch (here().kind) {
        case T::Word:
            wordPrimary();
            return;
        case T::QuotedName:
            nameChain();
            afterName();
            return;
        case T::String:
            advance();
            if (is(T::Dot) && m_dialect.hasStringNames) {
                takeStringChain();
            } else if (is(K::Uescape) && next().kind == T::String) {
                m_position += 2;
            }
            return;
        case T::Number:
        case T::Parameter:
            advance();
            return;
        case T::LeftParen:
        case T::LeftBrace:
            skipBrackets();
            return;
        case T::Dot:  // .t.a in MySQL
            if (!isName(next())) break;
            advance();
            nameChain();
            return;
        default:
            break;
    }
    unexpected("an expression");
}

void Grammar::takeStringChain() {
    while (is(T::Dot)) {
        advance();
        const bool isPart = isName(here()) || is(T::String) || isSymbol(m_position, "*");
        if (!isPart) unexpected("a name");
        advance();
    }
}

void Grammar::wordPrimary() {
    const Token& token = here();
    if (token.keyword == K::None) {
        if (takeTypedLiteral()) return;
        nameChain();
        afterName();
        return;
    }
    if (is(K::Case)) return caseExpression();
    if (isIntervalLiteral()) return intervalLiteral();
    if (is(K::Array) && next().kind == T::LeftBracket) {
        advance();
        skipBrackets();
        return;
    }
    if (is(K::Next) && nextIs(K::Value) && at(m_position + 2).keyword == K::For) {
        m_position += 3;  // NEXT VALUE FOR a sequence
        nameChain();
        afterCall();
        return;
    }
    const bool isCall = next().kind == T::LeftParen;
    const bool isName = next().kind == T::Dot || (isCall && is(K::Like));
    const bool isReserved = (token.flags & SQLET_WORD_RESERVED) != 0;
    if (neverOperands.contains(token.keyword) && isReserved && !isName) unexpected("an expression");
    if (takeTypedLiteral()) return;
    if (is(K::All) && isReserved && isAtStart()) unexpected("an expression");
    if (!isCall && isReserved && (token.flags & (SQLET_WORD_CONSTANT | SQLET_WORD_FUNCTION)) == 0 &&
        next().kind != T::Dot && !is(K::Default))
        unexpected("an expression");
    nameChain();
    afterName();
}

/// True where no operator stands before the operand, so that ALL quantifies nothing.
bool Grammar::isAtStart() const {
    if (m_position == 0) return true;
    const Token& before = at(m_position - 1);
    return before.kind != T::Operator && !m_dialect.comparisonWords.contains(before.keyword);
}

void Grammar::nameChain() {
    if (!isName(here())) unexpected("a name");
    advance();
    while (is(T::Dot)) {
        const Token& behind = next();
        const bool isStar = behind.kind == T::Operator && isSymbol(m_position + 1, "*");
        // t.$node_id is a pseudo-column of SQL Server.
        const bool isPart = isName(behind) || behind.kind == T::Parameter;
        if (!isPart && !isStar && behind.kind != T::Dot) return;
        m_position += behind.kind == T::Dot ? 1 : 2;
        if (isStar) return;
    }
}

/// What makes more of a name: the brackets of a call and what goes with them.
void Grammar::afterName() {
    while (m_dialect.hasStaticMethods && isSymbol(m_position, "::")) {
        advance();
        nameChain();
    }
    bool hasLink = false;  // a database link of Oracle
    while (m_dialect.hasOuterJoinMarks && isSymbol(m_position, "@")) {
        advance();
        nameChain();
        hasLink = true;
    }
    if (!is(T::LeftParen)) return;
    const bool isMark = isSymbol(m_position + 1, "+") && at(m_position + 2).kind == T::RightParen;
    skipBrackets();
    if (hasLink || (isMark && m_dialect.hasOuterJoinMarks)) return;
    afterCall();
}

/// OVER (..) and OVER w; where no name follows, OVER is one.
bool Grammar::isWindow() const {
    if (!is(K::Over)) return false;
    return next().kind == T::LeftParen ||
           (isName(next()) && (next().flags & SQLET_WORD_RESERVED) == 0);
}

void Grammar::afterCall() {
    for (;;) {
        if (isWindow()) {
            advance();
            if (is(T::LeftParen))
                skipBrackets();
            else
                nameChain();
        } else if ((is(K::Filter) || is(K::Keep) || is(K::Against)) &&
                   next().kind == T::LeftParen) {
            advance();
            skipBrackets();
        } else if (is(K::Within) && nextIs(K::Group)) {
            m_position += 2;
            if (!is(T::LeftParen)) unexpected("'('");
            skipBrackets();
        } else if ((is(K::Ignore) || is(K::Respect)) && nextIs(K::Nulls)) {
            m_position += 2;
        } else if (isFromFirstOrLast()) {
            m_position += 2;
        } else if (is(T::String) && m_dialect.hasTypedLiterals) {
            advance();  // varchar(3) 'abc'
        } else {
            return;
        }
    }
}

/// NTH_VALUE(x, 2) FROM LAST OVER ..
bool Grammar::isFromFirstOrLast() const {
    if (!is(K::From) || !(nextIs(K::First) || nextIs(K::Last))) return false;
    const Keyword behind = at(m_position + 2).keyword;
    return behind == K::Over || behind == K::Ignore || behind == K::Respect;
}

bool Grammar::takeTypedLiteral() {
    if (next().kind == T::String) {
        const bool isDate = is(K::Date) || is(K::Time) || is(K::Timestamp);
        if (!m_dialect.hasTypedLiterals && !(isDate && m_dialect.hasDateLiterals)) return false;
        m_position += 2;
        return true;
    }
    if (!m_dialect.hasTypedLiterals) return false;
    // timestamp with time zone '..', double precision '..'
    TokenIndex index = m_position + 1;
    if (is(K::Double) && nextIs(K::Precision)) {
        index += 1;
    } else if (is(K::Time) || is(K::Timestamp)) {
        if (at(index).kind == T::LeftParen && m_parser.tokens.partner[index] != noToken)
            index = m_parser.tokens.partner[index] + 1;
        if ((at(index).keyword == K::With || at(index).keyword == K::Without) &&
            at(index + 1).keyword == K::Time && at(index + 2).keyword == K::Zone)
            index += 3;
    } else {
        return false;
    }
    if (at(index).kind != T::String) return false;
    m_position = index + 1;
    return true;
}

/// Elsewhere INTERVAL is a name.
bool Grammar::isIntervalLiteral() const {
    if (!is(K::Interval) || !m_dialect.hasIntervals) return false;
    const TokenKind behind = next().kind;
    if (m_dialect.hasIntervalExpressions) return behind != T::Dot;
    if (behind == T::String || behind == T::Parameter) return true;
    const TokenIndex close = m_parser.tokens.partner[m_position + 1];
    return behind == T::LeftParen && close != noToken && at(close + 1).kind == T::String;
}

void Grammar::intervalLiteral() {
    advance();
    if (m_dialect.hasIntervalExpressions) return expressionWithUnit();
    if (is(T::LeftParen)) skipBrackets();  // interval(3) '..'
    advance();
    unitOf();
}

/// INTERVAL 1 + n DAY. The expression can hold another, though no server takes that.
void Grammar::expressionWithUnit() {
    if (++m_state.intervalDepth > maxIntervalDepth)
        beyondLimit(m_position, "more than 200 nested intervals");
    expression(Reach::Operand);
    --m_state.intervalDepth;
    if (!expressionUnits.contains(here().keyword)) return;
    advance();
    if (is(T::LeftParen)) skipBrackets();
}

void Grammar::unitOf() {
    while (intervalUnits.contains(here().keyword)) {
        advance();
        if (is(T::LeftParen)) skipBrackets();
        if (!is(K::To)) return;
        advance();
    }
}

void Grammar::caseExpression() {
    const TokenIndex first = m_position;
    int depth = 0;
    do {
        if (is(T::End)) throw Refusal{SQLET_ERROR_SYNTAX, first, "CASE has no END"};
        if (is(T::LeftParen) || is(T::LeftBracket)) {
            skipBrackets();
            continue;
        }
        if (is(T::RightParen) || is(T::Semicolon)) unexpected("END");
        if (is(K::Case) && !isPartOfName()) ++depth;
        if (is(K::End) && !isPartOfName() && !isBehindOperator()) --depth;
        advance();
    } while (depth > 0);
}

bool Grammar::isPartOfName() const {
    return next().kind == T::Dot || at(m_position - 1).kind == T::Dot;
}

/// True where an operand has to come, so that END is a name where it is none of the reserved.
bool Grammar::isBehindOperator() const {
    if ((here().flags & SQLET_WORD_RESERVED) != 0) return false;
    const Token& before = at(m_position - 1);
    switch (before.keyword) {
        case K::Case:
        case K::When:
        case K::Then:
        case K::Else:
        case K::And:
        case K::Or:
        case K::Not:
            return true;
        default:
            return before.kind == T::Operator;
    }
}

/// The type behind a cast operator.
void Grammar::typeName() {
    if (!isName(here())) unexpected("a type");
    const Keyword word = here().keyword;
    nameChain();
    if (is(K::Precision) && word == K::Double) advance();
    if (is(K::Varying) &&
        (word == K::Character || word == K::Char || word == K::Bit || word == K::National))
        advance();
    if (word == K::National && (is(K::Character) || is(K::Char))) {
        advance();
        if (is(K::Varying)) advance();
    }
    if (word == K::Interval) unitOf();
    if (is(T::LeftParen)) skipBrackets();
    if ((is(K::With) || is(K::Without)) && nextIs(K::Time) && at(m_position + 2).keyword == K::Zone)
        m_position += 3;
    if (is(K::Array)) advance();
    while (is(T::LeftBracket))
        skipBrackets();
}

Grammar::AfterOperand Grammar::afterOperand(Reach reach) {
    switch (here().kind) {
        case T::Operator:
            return afterOperandSymbol(reach);
        case T::Word:
            return here().keyword == K::None ? AfterOperand::Ends : afterOperandWord(reach);
        case T::LeftBracket:
            skipBrackets();
            return AfterOperand::GoesOn;
        case T::Dot:
            if (m_position > 0 && (at(m_position - 1).kind == T::RightParen ||
                                   at(m_position - 1).kind == T::RightBracket ||
                                   at(m_position - 1).kind == T::Parameter)) {
                advance();
                if (is(T::Operator) && isSymbol(m_position, "*")) {
                    advance();
                    return AfterOperand::GoesOn;
                }
                nameChain();
                afterName();
                return AfterOperand::GoesOn;
            }
            return AfterOperand::Ends;
        default:
            return AfterOperand::Ends;
    }
}

Grammar::AfterOperand Grammar::afterOperandSymbol(Reach reach) {
    const std::string_view symbol = m_parser.textOf(m_position);
    if (m_dialect.hasCastOperator && symbol == "::") {
        advance();
        typeName();
        return AfterOperand::GoesOn;
    }
    const char* name = nullptr;
    const OperatorRole role = m_dialect.roleOf(symbol, &name);
    if (role == OperatorRole::Assignment) return AfterOperand::Ends;
    const TokenIndex behind = endOfOperator();
    const char last = m_parser.text[m_tokens[behind - 1].offset];
    const bool isSplitComparison = behind > m_position + 1 && last != '|' && last != '*';
    if ((role != OperatorRole::Binary || isSplitComparison) && reach == Reach::Operand)
        return AfterOperand::Ends;
    m_position = behind;
    return AfterOperand::WantsOperand;
}

/// One behind the operator here, which in Oracle may have blanks in it.
TokenIndex Grammar::endOfOperator() const {
    const TokenIndex behind = m_position + 1;
    if (!m_dialect.hasBlanksInOperators || here().length != 1) return behind;
    const char first = m_parser.text[here().offset];
    const bool takesEqual =
        first == '<' || first == '>' || first == '!' || first == '^' || first == '~';
    const bool isSplit =
        (takesEqual && isSymbol(behind, "=")) || (first == '<' && isSymbol(behind, ">")) ||
        (first == '|' && isSymbol(behind, "|")) || (first == '*' && isSymbol(behind, "*"));
    return isSplit ? behind + 1 : behind;
}

Grammar::AfterOperand Grammar::afterOperandWord(Reach reach) {
    const Keyword word = here().keyword;
    if (word == K::And || word == K::Or) {
        if (reach != Reach::Whole) return AfterOperand::Ends;
        advance();
        return AfterOperand::WantsOperand;
    }
    if (word == K::Collate) {
        advance();
        if (is(T::String))
            advance();
        else
            nameChain();
        return AfterOperand::GoesOn;
    }
    if (word == K::At && nextIs(K::Local)) {
        m_position += 2;
        return AfterOperand::GoesOn;
    }
    if (word == K::At && nextIs(K::Time)) {
        m_position += 2;
        if (!is(K::Zone)) unexpected("ZONE");
        advance();
        return AfterOperand::WantsOperand;
    }
    if (isIntervalOf(m_position)) {
        unitOf();
        return AfterOperand::GoesOn;
    }
    if (isBinaryWord(m_position)) {
        advance();
        if (word == K::Multiset) {  // MULTISET UNION DISTINCT
            while (is(K::Union) || is(K::Except) || is(K::Intersect) || is(K::All) ||
                   is(K::Distinct))
                advance();
        }
        return AfterOperand::WantsOperand;
    }
    if (word == K::Operator && next().kind == T::LeftParen) {
        advance();
        skipBrackets();
        return AfterOperand::WantsOperand;
    }
    if (!isComparisonWordAt(m_position) || reach == Reach::Operand) return AfterOperand::Ends;
    return comparisonWord();
}

/// (a - b) DAY TO SECOND, at DAY.
bool Grammar::isIntervalOf(TokenIndex unit) const {
    if (!m_dialect.hasIntervalUnitsBehind || !intervalUnits.contains(at(unit).keyword))
        return false;
    const Token& behind = at(unit + 1);
    if (behind.keyword == K::To) return true;
    const TokenIndex close =
        behind.kind == T::LeftParen ? m_parser.tokens.partner[unit + 1] : noToken;
    return close != noToken && at(close + 1).keyword == K::To;
}

bool Grammar::isBinaryWord(TokenIndex index) const {
    const Keyword word = at(index).keyword;
    if (!m_dialect.binaryWords.contains(word)) return false;
    if (word != K::Mod || !m_dialect.modMayBeName) return true;
    const Token& behind = at(index + 1);
    return behind.kind == T::Number || behind.kind == T::LeftParen ||
           behind.kind == T::QuotedName || behind.kind == T::Parameter ||
           (behind.kind == T::Word && !m_dialect.sourceEnds.contains(behind.keyword));
}

bool Grammar::isComparisonWordAt(TokenIndex index) const {
    const Keyword word = at(index).keyword;
    if (word == K::None) return false;
    if (m_dialect.comparisonWords.contains(word)) return true;
    if (word == K::Isnull || word == K::Notnull) return m_dialect.hasPostfixNullTests;
    if (word != K::Not) return false;
    const Keyword behind = at(index + 1).keyword;
    if (behind == K::Null) return m_dialect.hasPostfixNotNull;
    return behind != K::Is && behind != K::Xor && behind != K::Escape &&
           m_dialect.comparisonWords.contains(behind);
}

/// Takes a comparison by words whose left side was read; what it means is not asked.
Grammar::AfterOperand Grammar::comparisonWord() {
    if (is(K::Not)) {
        advance();
        if (is(K::Null)) {
            advance();
            return AfterOperand::GoesOn;
        }
    }
    const Keyword word = here().keyword;
    advance();
    switch (word) {
        case K::Isnull:
        case K::Notnull:
            return AfterOperand::GoesOn;
        case K::Is:
            isTest();
            return AfterOperand::GoesOn;
        case K::Between:
            betweenBounds();
            return AfterOperand::GoesOn;
        case K::Similar:
            if (is(K::To)) advance();
            break;
        case K::Sounds:
            if (is(K::Like)) advance();
            break;
        case K::Member:
        case K::Submultiset:
            if (is(K::Of)) advance();
            break;
        default:
            break;
    }
    return AfterOperand::WantsOperand;
}

/// What follows IS.
void Grammar::isTest() {
    if (is(K::Not)) advance();
    if (is(K::Distinct) && nextIs(K::From)) {
        m_position += 2;
        expression(Reach::Operand);
        return;
    }
    if (is(K::Of) && (next().kind == T::LeftParen || nextIs(K::Type))) {
        advance();
        if (is(K::Type)) advance();
        if (!is(T::LeftParen)) unexpected("'('");
        skipBrackets();
        return;
    }
    if (is(K::Json)) {
        while (is(K::Json) || is(K::Object) || is(K::Scalar) || is(K::Value) || is(K::Array) ||
               is(K::With) || is(K::Without) || is(K::Unique) || is(K::Keys))
            advance();
        return;
    }
    if (is(K::A) && nextIs(K::Set)) {
        m_position += 2;
        return;
    }
    if (is(T::Word) && nextIs(K::Normalized)) advance();
    expression(Reach::Operand);
}

void Grammar::betweenBounds() {
    if (is(K::Symmetric) || is(K::Asymmetric)) advance();
    expression(Reach::Operand);
    if (!is(K::And)) unexpected("AND");
    advance();
    expression(Reach::Operand);
}

bool Grammar::isNameChain(TokenSpan span) const {
    if ((span.last - span.first) % 2 != 0) return false;
    for (TokenIndex i = span.first; i < span.last; i += 2) {
        if (!isName(m_tokens[i]) || m_tokens[i + 1].kind != T::Dot) return false;
    }
    return isName(m_tokens[span.last]);
}

/// F(..) spelled without blanks, F an aggregate of the dialect, and nothing behind.
bool Grammar::isCallOf(TokenSpan span) const {
    if (span.last < span.first + 3) return false;
    const Token& function = m_tokens[span.first];
    if (function.kind != T::Word || (function.flags & SQLET_WORD_FUNCTION) == 0) return false;
    const Token& open = m_tokens[span.first + 1];
    if (open.kind != T::LeftParen || m_parser.tokens.partner[span.first + 1] != span.last)
        return false;
    for (TokenIndex i = span.first; i < span.last; ++i) {
        if ((m_tokens[i].flags & TokenTouchesNext) == 0) return false;
    }
    return true;
}

ColumnForm Grammar::columnForm(TokenSpan span) const {
    if (isNameChain(span)) return ColumnForm::Name;
    if (isSymbol(span.last, "*") &&
        (span.first == span.last ||
         (span.last - span.first >= 2 && m_tokens[span.last - 1].kind == T::Dot &&
          isNameChain({span.first, span.last - 2}))))
        return ColumnForm::Asterisk;
    if (!isCallOf(span)) return ColumnForm::Text;
    const TokenSpan argument = {span.first + 2, span.last - 1};
    if (argument.first == argument.last && isSymbol(argument.first, "*"))
        return ColumnForm::AggregateStar;
    return isNameChain(argument) ? ColumnForm::AggregateName : ColumnForm::Text;
}

}  // namespace sqlet
