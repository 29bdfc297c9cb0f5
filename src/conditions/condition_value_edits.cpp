#include "conditions/condition_value_edits.h"

#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "platform/tolk/tolk.h"
#include "widgets/fixed_width_font.h"

namespace QB {
namespace {

constexpr int leastLineWidth = 200;
constexpr QSize leastListSize(400, 60);
constexpr int mostListLines = 8;

QLineEdit* addLine(QFormLayout* layout, const char* name, unsigned caption, const QString& text) {
    auto* line = new QLineEdit(text);
    line->setObjectName(QLatin1String(name));
    line->setMinimumWidth(leastLineWidth);
    line->setAccessibleName(Tolk::localize(caption));
    layout->addRow(Tolk::localize(caption) + ':', line);
    return line;
}

QLabel* makePlainLabel(const QString& text) {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    label->setWordWrap(true);
    return label;
}

}  // namespace

QBConditionBoundsEdit::QBConditionBoundsEdit(const QString& low, const QString& high,
                                             QWidget* parent)
    : QWidget(parent)
    , m_low(addLine(new QFormLayout(this), "lowLineEdit", Tolk::TextLowerBound, low))
    , m_high(addLine(static_cast<QFormLayout*>(layout()), "highLineEdit", Tolk::TextUpperBound,
                     high)) {
    layout()->setContentsMargins(0, 0, 0, 0);
    setFocusProxy(m_low);
    for (const QLineEdit* line : {m_low, m_high})
        connect(line, &QLineEdit::returnPressed, this, &QBConditionBoundsEdit::accepted);
}

QString QBConditionBoundsEdit::low() const {
    return m_low->text();
}

QString QBConditionBoundsEdit::high() const {
    return m_high->text();
}

QBConditionListEdit::QBConditionListEdit(const QString& text, QWidget* parent)
    : QWidget(parent), m_text(new QPlainTextEdit) {
    const QString hint = Tolk::localize(Tolk::TextListHint) + QLatin1String(": ") +
                         QLatin1String("1, ") + QLatin1String("2, ...");
    m_text->setObjectName(QStringLiteral("listTextEdit"));
    // A long line without blanks takes seconds to wrap.
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_text->setTabChangesFocus(true);
    m_text->setMinimumSize(leastListSize);
    m_text->setMaximumHeight(mostListLines * m_text->fontMetrics().lineSpacing());
    m_text->setFont(fixedWidthFont());
    m_text->setAccessibleName(hint);
    m_text->setPlainText(text);
    m_text->installEventFilter(this);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(makePlainLabel(hint));
    column->addWidget(m_text);
    column->addWidget(makePlainLabel(Tolk::localize(Tolk::TextAcceptTextHint)));
    setFocusProxy(m_text);
}

bool QBConditionListEdit::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool isReturn = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    if (!isReturn || !(key->modifiers() & Qt::ControlModifier)) return false;
    Q_EMIT accepted();
    return true;
}

}  // namespace QB
