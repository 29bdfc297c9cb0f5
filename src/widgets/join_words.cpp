#include "widgets/join_words.h"

#include <QGuiApplication>
#include <map>
#include <utility>

#include "platform/tolk/tolk.h"
#include "widgets/drawn_icons.h"

namespace QB {
namespace {

struct JoinKind {
    SQLJoinType type;
    const char* title;  // null: a localised word
    const char* image;
    Tolk::TextId description;  // TextCount: none
};

/// In the order in which the kinds are offered.
constexpr JoinKind kinds[] = {
    {SQLJoinTypeInner, "INNER JOIN", "Edit_JOIN_INNER", Tolk::TextInnerJoinHint},
    {SQLJoinTypeLeft, "LEFT JOIN", "Edit_JOIN_LEFT", Tolk::TextLeftJoinHint},
    {SQLJoinTypeRight, "RIGHT JOIN", "Edit_JOIN_RIGHT", Tolk::TextRightJoinHint},
    {SQLJoinTypeCross, "CROSS JOIN", "Edit_JOIN_CROSS", Tolk::TextCrossJoinHint},
    {SQLJoinTypeFullOuter, "FULL OUTER JOIN", "Edit_JOIN_FULL_OUTER", Tolk::TextFullOuterJoinHint},
    {SQLJoinTypeComma, "Comma Seperated", "Edit_JOIN_COMMA", Tolk::TextCommaJoinHint},
    {SQLJoinTypeCustom, nullptr, "Edit_JOIN_Custom", Tolk::TextCount},
};

/// That of the custom kind for a value outside the enumeration.
const JoinKind& kindOf(SQLJoinType type) {
    for (const JoinKind& kind : kinds)
        if (kind.type == type) return kind;
    return *std::prev(std::end(kinds));
}

}  // namespace

const std::vector<SQLJoinType>& joinTypesInOrder() {
    static const std::vector<SQLJoinType> types = [] {
        std::vector<SQLJoinType> result;
        for (const JoinKind& kind : kinds)
            result.push_back(kind.type);
        return result;
    }();
    return types;
}

QString joinTitle(SQLJoinType type) {
    const JoinKind& kind = kindOf(type);
    return kind.title ? QString::fromLatin1(kind.title) : Tolk::localize(Tolk::TextCustomJoin);
}

QString joinDescription(SQLJoinType type) {
    return Tolk::localize(kindOf(type).description);
}

QPixmap joinPixmap(SQLJoinType type) {
    // Where an image is missing, what is drawn for it has the colour of texts.
    static std::map<std::pair<SQLJoinType, QRgb>, QPixmap> pixmaps;
    const JoinKind& kind = kindOf(type);
    const QPalette palette = QGuiApplication::palette();
    QPixmap& pixmap = pixmaps[{kind.type, palette.color(QPalette::WindowText).rgba()}];
    if (pixmap.isNull())
        pixmap = imageOrSign(QStringLiteral(":/images/%1.png").arg(QLatin1String(kind.image)),
                             DrawnSign::TwoCircles, palette, 32);
    return pixmap;
}

QString joinWord(const Component::SQL::SQLJoinSourceNodeComponent* join) {
    if (kindOf(join->joinType).title) return joinTitle(join->joinType);
    return QString::fromStdString(join->joinText);
}

bool hasFullOuterJoin(DatabaseType type) {
    return type != DatabaseTypeMySQL && type != DatabaseTypeMariaDB;
}

}  // namespace QB
