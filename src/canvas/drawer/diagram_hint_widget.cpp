#include "canvas/drawer/diagram_hint_widget.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>

#include "canvas/base/canvas_style.h"
#include "platform/tolk/tolk.h"

namespace QB {
namespace {

constexpr double cornerRadius = 10.0;
const QColor fill(0, 0, 0, 16);
const QColor dropFill(175, 175, 175, 48);

}  // namespace

QBDiagramHintWidget::QBDiagramHintWidget(QWidget* parent)
    : QWidget(parent), m_label(new QLabel(this)) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* layout = new QGridLayout(this);
    layout->setObjectName(QStringLiteral("gridLayout"));
    m_label->setObjectName(QStringLiteral("label"));
    m_label->setAlignment(Qt::AlignCenter);
    m_label->setWordWrap(true);
    layout->addWidget(m_label, 0, 0);
    retranslate();
}

QBDiagramHintWidget::~QBDiagramHintWidget() = default;

void QBDiagramHintWidget::setTakesDrop(bool takesDrop) {
    m_takesDrop = takesDrop;
    update();
}

void QBDiagramHintWidget::showEvent(QShowEvent* event) {
    applyTheme();
    QWidget::showEvent(event);
}

void QBDiagramHintWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LanguageChange) retranslate();
    if (event->type() == QEvent::PaletteChange) applyTheme();
    QWidget::changeEvent(event);
}

void QBDiagramHintWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
    if (m_takesDrop) paintDropFeedback(painter);
}

void QBDiagramHintWidget::retranslate() {
    m_label->setText(Tolk::localize(Tolk::TextDiagramHint));
}

/// It stands on the canvas, not on a window.
void QBDiagramHintWidget::applyTheme() {
    const LumoColor text = DiagramLumo::themePalette().text;
    QPalette colors = m_label->palette();
    colors.setColor(QPalette::WindowText, QColor(text.red, text.green, text.blue));
    m_label->setPalette(colors);
}

void QBDiagramHintWidget::paintDropFeedback(QPainter& painter) const {
    painter.fillRect(rect(), dropFill);
}

}  // namespace QB
