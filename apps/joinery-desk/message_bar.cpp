#include "apps/joinery-desk/message_bar.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QStyle>
#include <QToolButton>
#include <utility>

#include "model/callbacks.h"

namespace QB::Desk {
namespace {

QColor background(MessageBar::Kind kind) {
    const bool isDark = Callback::isDarkTheme();
    if (kind == MessageBar::Kind::Question) return isDark ? QColor(0x4f4520) : QColor(0xfdf3d3);
    if (kind == MessageBar::Kind::Error) return isDark ? QColor(0x542a2c) : QColor(0xfde8e6);
    return isDark ? QColor(0x263f5c) : QColor(0xe4effb);
}

QStyle::StandardPixmap iconOf(MessageBar::Kind kind) {
    if (kind == MessageBar::Kind::Question) return QStyle::SP_MessageBoxWarning;
    return kind == MessageBar::Kind::Error ? QStyle::SP_MessageBoxCritical
                                           : QStyle::SP_MessageBoxInformation;
}

QString nameOf(MessageBar::Kind kind) {
    if (kind == MessageBar::Kind::Question) return MessageBar::tr("Question");
    return kind == MessageBar::Kind::Error ? MessageBar::tr("Error") : MessageBar::tr("Note");
}

}  // namespace

MessageBar::MessageBar(QWidget* parent)
    : QFrame(parent)
    , m_icon(new QLabel)
    , m_text(new QLabel)
    , m_answers{new QPushButton, new QPushButton}
    , m_close(new QToolButton) {
    setObjectName(QStringLiteral("messageBar"));
    setAutoFillBackground(true);
    setFrameShape(QFrame::StyledPanel);
    m_text->setObjectName(QStringLiteral("messageText"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_icon->setContentsMargins(0, 2, 0, 0);  // on the first line of the text
    m_close->setAutoRaise(true);
    m_close->setText(QStringLiteral("×"));  // the style's picture is dark in every theme
    m_close->setFocusPolicy(Qt::StrongFocus);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 4, 4);
    layout->addWidget(m_icon, 0, Qt::AlignTop);
    layout->addWidget(m_text, 1);
    for (std::size_t i = 0; i < m_answers.size(); ++i) {
        m_answers[i]->setAutoDefault(false);
        layout->addWidget(m_answers[i], 0, Qt::AlignTop);
        connect(m_answers[i], &QPushButton::clicked, this, [this, i] { choose(i); });
    }
    m_answers[0]->setObjectName(QStringLiteral("messageAnswer"));
    m_answers[1]->setObjectName(QStringLiteral("messageOtherAnswer"));
    layout->addWidget(m_close, 0, Qt::AlignTop);
    connect(m_close, &QToolButton::clicked, this, &QWidget::hide);
    forgetAnswers();
    retranslate();
    hide();
}

void MessageBar::show(Kind kind, const QString& text) {
    m_kind = kind;
    m_isOfQuery = kind == Kind::Question;
    forgetAnswers();
    m_text->setText(text);
    color();
    setVisible(!text.isEmpty());
}

void MessageBar::ask(const QString& text, Answer answer, Answer other) {
    QWidget* focused = QApplication::focusWidget();
    show(Kind::Question, text);
    std::array<Answer, 2> answers = {std::move(answer), std::move(other)};
    for (std::size_t i = 0; i < answers.size(); ++i) {
        m_answers[i]->setText(answers[i].text);
        m_answers[i]->setVisible(!answers[i].text.isEmpty());
        m_chosen[i] = std::move(answers[i].chosen);
    }
    m_answers[0]->setFocus(Qt::OtherFocusReason);
    if (focused != nullptr && !isAncestorOf(focused)) m_focusBefore = focused;
}

void MessageBar::forgetAnswers() {
    m_chosen = {};
    for (QPushButton* button : m_answers)
        button->hide();
}

void MessageBar::choose(std::size_t index) {
    const std::function<void()> chosen = std::move(m_chosen[index]);
    hide();
    if (chosen) chosen();
}

void MessageBar::showOfQuery(const QString& error) {
    show(Kind::Error, error);
    m_isOfQuery = true;
}

void MessageBar::withdrawOfQuery() {
    if (m_isOfQuery) hide();
}

void MessageBar::hideEvent(QHideEvent* event) {
    QFrame::hideEvent(event);
    m_chosen = {};
    if (m_focusBefore && !isVisible()) m_focusBefore->setFocus(Qt::OtherFocusReason);
    m_focusBefore = nullptr;
}

QString MessageBar::text() const {
    return isHidden() ? QString() : m_text->text();
}

void MessageBar::color() {
    const QScopedValueRollback<bool> guard(m_isColoring, true);
    QPalette colors;
    colors.setColor(QPalette::Window, background(m_kind));
    setPalette(colors);
    const auto icon = iconOf(m_kind);
    const int side = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    m_icon->setPixmap(style()->standardIcon(icon, nullptr, this).pixmap(side));
    setAccessibleName(nameOf(m_kind));
}

void MessageBar::retranslate() {
    m_close->setToolTip(tr("Close this message"));
    m_close->setAccessibleName(tr("Close this message"));
}

void MessageBar::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) retranslate();
    const bool isNewLook =
        event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange;
    if (isNewLook && !m_isColoring) color();
}

void MessageBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) return hide();
    QFrame::keyPressEvent(event);
}

}  // namespace QB::Desk
