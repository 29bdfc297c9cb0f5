#include "panels/select_options.h"

#include <QRegularExpression>
#include <algorithm>
#include <iterator>

namespace QB {
namespace {

const QLatin1String distinct("DISTINCT");

bool isWord(const QString& text, QLatin1String word) {
    return text.compare(word, Qt::CaseInsensitive) == 0;
}

bool saysWhichRows(const QString& text) {
    const QLatin1String words[] = {distinct, QLatin1String("ALL"), QLatin1String("DISTINCTROW"),
                                   QLatin1String("UNIQUE")};
    return std::any_of(std::begin(words), std::end(words),
                       [&text](QLatin1String word) { return isWord(text, word); });
}

/// ON and its columns, which belong to the DISTINCT before them.
bool needsDistinct(const QString& text) {
    return isWord(text.section(QRegularExpression(QStringLiteral("[\\s(]")), 0, 0),
                  QLatin1String("ON"));
}

void add(std::vector<QBSelectOption>& options, const QStringRef& run) {
    const QString text = run.trimmed().toString();
    if (!text.isEmpty()) options.push_back({text, true});
}

}  // namespace

QStringList selectOptionWords(DatabaseType family) {
    return hasStatementModel(family) ? QStringList(distinct) : QStringList();
}

std::vector<QBSelectOption> selectOptions(const QStringList& words, const QString& text) {
    std::vector<QBSelectOption> options;
    for (const QString& word : words)
        options.push_back({word, false});
    static const QRegularExpression anyWord(QStringLiteral("\\S+"));
    int unknownFrom = 0;
    for (auto match = anyWord.globalMatch(text); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        const int known = words.indexOf(found.captured().toUpper());
        if (known < 0 && !saysWhichRows(found.captured())) continue;
        add(options, text.midRef(unknownFrom, found.capturedStart() - unknownFrom));
        unknownFrom = found.capturedEnd();
        if (known < 0)
            options.push_back({found.captured(), true});
        else
            options[static_cast<std::size_t>(known)].isChosen = true;
    }
    add(options, text.midRef(unknownFrom));
    return options;
}

QString selectOptionText(const std::vector<QBSelectOption>& options) {
    QStringList chosen;
    for (const QBSelectOption& option : options) {
        if (option.isChosen) chosen << option.text;
    }
    return chosen.join(QLatin1Char(' '));
}

void settleSelectOptions(std::vector<QBSelectOption>& options, std::size_t changed) {
    const QBSelectOption made = options[changed];
    for (std::size_t i = 0; i < options.size(); ++i) {
        QBSelectOption& other = options[i];
        if (i == changed) continue;
        const bool isRival = saysWhichRows(made.text) && saysWhichRows(other.text);
        if (made.isChosen && isRival) other.isChosen = false;
        if (!made.isChosen && isWord(made.text, distinct) && needsDistinct(other.text))
            other.isChosen = false;
        if (made.isChosen && needsDistinct(made.text) && isWord(other.text, distinct))
            other.isChosen = true;
    }
}

}  // namespace QB
