#include "frame/text_spans.h"

#include <QRandomGenerator>
#include <QTextCursor>
#include <QTextDocument>
#include <QtTest>

namespace QB {
namespace {

/// What the document shows at a span.
QString shown(const std::string& text, TextSpan span) {
    QTextDocument document;
    QTextCursor(&document).insertText(documentText(text));
    QTextCursor cursor(&document);
    cursor.setPosition(span.start);
    cursor.setPosition(span.start + span.length, QTextCursor::KeepAnchor);
    return cursor.selectedText();
}

QBRange rangeOf(const std::string& text, const std::string& part) {
    return {static_cast<std::int32_t>(text.find(part)), static_cast<std::int32_t>(part.size())};
}

QString withDifference(const QString& oldText, const QString& newText) {
    const TextDifference difference = differenceBetween(oldText, newText);
    QString result = oldText;
    return result.replace(difference.start, difference.oldLength,
                          newText.mid(difference.start, difference.newLength));
}

}  // namespace

class TextSpansTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void bytesBecomePositionsBehindUmlautsEmojiAndLineBreaks() {
        const std::string text = u8"SELECT 'größe 😀',\r\n\tä AS b\rFROM \"t\u2029ü\"";
        for (const char* part : {"SELECT", u8"größe", u8"😀", u8"ä AS", "FROM", u8"ü"}) {
            const auto spans = documentSpans(text, {rangeOf(text, part)});
            QCOMPARE(int(spans.size()), 1);
            QCOMPARE(shown(text, spans.front()), QString::fromUtf8(part));
        }
        QTextDocument document;
        QTextCursor(&document).insertText(documentText(text));
        QCOMPARE(document.blockCount(), 4);
    }

    void rangesAreClampedAndEmptyOnesLeftOut() {
        const std::vector<QBRange> ranges = {{3, 0}, {2, 100}, {50, 3}, {-4, 6}, {0, -2}, {3, 1}};
        const std::vector<TextSpan> expected = {{2, 3}, {0, 2}, {3, 1}};
        QVERIFY(documentSpans("a b c", ranges) == expected);
        QVERIFY(documentSpans("", ranges).empty());
    }

    void aRangeGrowsOverTheIndentationBeforeIt() {
        const std::string text = "a\n \t b c\n\nd";
        QCOMPARE(widenedOverIndentation(text, {5, 1}), (QBRange{2, 4}));
        QCOMPARE(widenedOverIndentation(text, {7, 1}), (QBRange{7, 1}));
        QCOMPARE(widenedOverIndentation(text, {10, 1}), (QBRange{10, 1}));
        QCOMPARE(widenedOverIndentation(text, {0, 1}), (QBRange{0, 1}));
        QCOMPARE(widenedOverIndentation("  a", {2, 1}), (QBRange{2, 1}));
    }

    void theDifferenceTurnsOneTextIntoTheOther() {
        QRandomGenerator random(7);
        const QString alphabet = QString::fromUtf8("ab\n😀😁");
        const auto randomText = [&] {
            QString text;
            for (quint32 i = random.bounded(8U); i > 0; --i) {
                const int at = random.bounded(5);
                text += at < 3 ? alphabet.mid(at, 1) : alphabet.mid(3 + (at - 3) * 2, 2);
            }
            return text;
        };
        for (int run = 0; run < 2000; ++run) {
            const QString before = randomText();
            const QString after = randomText();
            QCOMPARE(withDifference(before, after), after);
            const TextDifference difference = differenceBetween(before, after);
            QVERIFY(QString::fromUtf8(before.left(difference.start).toUtf8()) ==
                    before.left(difference.start));
        }
        const TextDifference difference = differenceBetween("abcdef", "abXdef");
        QCOMPARE(difference.start, 2);
        QCOMPARE(difference.oldLength, 1);
        QCOMPARE(difference.newLength, 1);
    }
};

}  // namespace QB

QTEST_APPLESS_MAIN(QB::TextSpansTest)
#include "text_spans_test.moc"
