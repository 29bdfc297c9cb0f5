#include "popups/join_choice.h"

#include "model/callbacks.h"
#include "platform/tolk/tolk.h"
#include "popups/join_selection_popup_widget.h"
#include "widgets/join_words.h"

namespace QB {

QBJoinSelectionPopupWidget* makeJoinChooser(const SourceJoinChoice& join, DatabaseType family,
                                            bool showCommaJoin) {
    const QString text = QString::fromStdString(join.text);
    return new QBJoinSelectionPopupWidget(join.type, &text, hasFullOuterJoin(family), showCommaJoin,
                                          true, nullptr);
}

SourceJoinChoice chosenJoin(const QBJoinSelectionPopupWidget* joins) {
    int type = SQLJoinTypeCustom;
    QString text;
    joins->joinSelection(&type, &text);
    return {static_cast<SQLJoinType>(type), text.trimmed().toStdString()};
}

bool refuseWithoutWords(const SourceJoinChoice& join) {
    if (join.type != SQLJoinTypeCustom || !join.text.empty()) return false;
    Callback::showError(Tolk::localize(Tolk::TextCustomJoinMissing).toStdString());
    return true;
}

}  // namespace QB
