#include "rows/row_control.h"

#include <QEvent>

#include "platform/tolk/tolk.h"
#include "widgets/drawn_icons.h"

namespace QB {
namespace {

struct ControlLook {
    const char* image;
    DrawnSign sign;
    Tolk::TextId text;
};

ControlLook lookOf(QBRowControl::Kind kind) {
    switch (kind) {
        case QBRowControl::AddBracket:
            return {":/images/TB_Add_Bracket.png", DrawnSign::BracketedPlus, Tolk::TextAddBracket};
        case QBRowControl::Delete:
            return {":/images/Tools_OV_Delete_Grey.png", DrawnSign::Cross, Tolk::TextRemoveRow};
        case QBRowControl::AddRow:
        case QBRowControl::None:
            break;
    }
    return {":/images/TB_Add.png", DrawnSign::Plus, Tolk::TextAddRow};
}

}  // namespace

QBRowControl::QBRowControl(QWidget* parent) : QBLabel(parent) {}

void QBRowControl::setKind(Kind kind) {
    m_kind = kind;
    setClickable(true);
    showKind();
}

void QBRowControl::showKind() {
    const ControlLook look = lookOf(m_kind);
    setPixmap(imageOrSign(QLatin1String(look.image), look.sign, palette()));
    const QString text = Tolk::localize(look.text);
    setToolTipText(text);
    setAccessibleName(text);
}

void QBRowControl::changeEvent(QEvent* event) {
    QBLabel::changeEvent(event);
    const bool concernsLook =
        event->type() == QEvent::LanguageChange || event->type() == QEvent::PaletteChange;
    if (concernsLook && m_kind != None) showKind();
}

}  // namespace QB
