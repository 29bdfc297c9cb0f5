#include <QtTest>

#include "diagrampanel/diagram_sync.h"

namespace QB {
namespace {

using namespace Component::SQL;

/// A source of the test, by a letter that stands for its address: nothing looks into it.
SQLAbstractSourceComponent* at(char letter) {
    return reinterpret_cast<SQLAbstractSourceComponent*>(quintptr(letter));
}

/// "a1 b2 c3+": at a the item 1, at b the item 2, at c the join 3.
DiagramParts parts(const QString& text) {
    DiagramParts result;
    for (const QString& part : text.split(' ', Qt::SkipEmptyParts)) {
        const bool isJoin = part.endsWith('+');
        const long id = part.mid(1, part.size() - (isJoin ? 2 : 1)).toLong();
        result.push_back({at(part[0].toLatin1()), id, isJoin});
    }
    return result;
}

QString letter(SQLAbstractSourceComponent* component) {
    return QString(QChar(static_cast<ushort>(reinterpret_cast<quintptr>(component))));
}

QString text(const DiagramParts& parts) {
    QString all;
    for (const DiagramPart& part : parts)
        all += letter(part.component) + QString::number(part.id) + (part.isJoin ? "+ " : " ");
    return all.trimmed();
}

QString text(const DiagramDifference& difference) {
    QStringList rebound;
    for (const DiagramRebind& rebind : difference.rebound)
        rebound += letter(rebind.former) + '>' + letter(rebind.now);
    return QStringList{text(difference.removed), rebound.join(' '), text(difference.added),
                       text(difference.updated)}
        .join(" | ");
}

}  // namespace

class DiagramSyncTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// Removed | rebound | added | updated.
    void aDifferenceIsFoundByIds_data() {
        QTest::addColumn<QString>("drawn");
        QTest::addColumn<QString>("wanted");
        QTest::addColumn<QString>("difference");
        const char* const cases[][4] = {
            {"nothing at all", "", "", " |  |  | "},
            {"the first layer", "", "b2 a1 c3+", " |  | b2 a1 c3+ | "},
            {"nothing changed", "a1 b2 c3+", "b2 a1 c3+", " |  |  | b2 a1 c3+"},
            {"all go", "a1 c3+", "", "a1 c3+ |  |  | "},
            {"one comes and one goes", "a1 b2", "b2 d4", "a1 |  | d4 | b2"},
            {"an address is used again", "a1 b2", "a9 b2", "a1 |  | a9 | b2"},
            {"and for a join", "a1 b2", "a9+ b2", "a1 |  | a9+ | b2"},
            {"a text read again: other ids at the same addresses", "a1 b2 c3+", "b7 c8 a9+",
             "a1 b2 c3+ |  | b7 c8 a9+ | "},
            {"two change places", "a1 b2", "a2 b1", " | b>a a>b |  | a2 b1"},
            {"three go round", "a1 b2 c3+", "a2 b3+ c1", " | b>a c>b a>c |  | a2 b3+ c1"},
            {"one moves to where another one went", "a1 b2", "a2", "a1 | b>a |  | a2"},
            {"an id that turns from an item to a join", "a1", "a1+", "a1 |  | a1+ | "},
        };
        for (const auto& [name, drawn, wanted, difference] : cases)
            QTest::newRow(name) << drawn << wanted << difference;
    }
    void aDifferenceIsFoundByIds() {
        QFETCH(QString, drawn);
        QFETCH(QString, wanted);
        QFETCH(QString, difference);
        QCOMPARE(text(diagramDifference(parts(drawn), parts(wanted))), difference);
    }
};

}  // namespace QB

QTEST_GUILESS_MAIN(QB::DiagramSyncTest)
#include "diagram_sync_test.moc"
