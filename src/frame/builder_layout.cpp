#include "frame/builder_layout.h"

#include <QEvent>
#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

#include "frame/query_builder_widget.h"
#include "platform/nuvo/nuvo_json.h"
#include "ui_query_builder_widget.h"

namespace QB {
namespace {

constexpr int noPosition = std::numeric_limits<int>::max();
/// Object tree, diagram, preview: in proportion to each other, since the splitter scales them.
const QList<int> initialPaneWidths = {230, 520, 350};
constexpr int diagramIndex = 1;
const QLatin1String relationModeKey("RelationMode");
/// Of a window that would lie outside of all screens: what must show, to get hold of it.
constexpr QSize handhold(100, 40);

int integerOr(const NuvoJson& json, const char* key, int fallback) {
    const NuvoJsonValue* const value = json.find(key);
    return value != nullptr && value->isInteger() ? value->integerValue() : fallback;
}

/// A length; what is none counts as missing.
int lengthOr(const NuvoJson& json, const char* key, int fallback) {
    const int length = integerOr(json, key, fallback);
    return length >= 0 && length <= QWIDGETSIZE_MAX ? length : fallback;
}

bool boolOr(const NuvoJson& json, const char* key, bool fallback) {
    const NuvoJsonValue* const value = json.find(key);
    return value != nullptr && value->isBool() ? value->boolValue() : fallback;
}

int total(const QSplitter* splitter) {
    const QList<int> sizes = splitter->sizes();
    return std::accumulate(sizes.begin(), sizes.end(), 0);
}

/// A window as large as no screen could cost more memory than there is.
QSize usableSize(const QWidget* window, QSize size) {
    const QSize desktop = window->screen()->virtualSize();
    return size.boundedTo(desktop.expandedTo(window->size()));
}

QPoint usablePosition(const QWidget* window, QPoint position) {
    const QRect desktop = window->screen()->virtualGeometry();
    return {qBound(desktop.left() + handhold.width() - window->width(), position.x(),
                   desktop.right() - handhold.width()),
            qBound(desktop.top(), position.y(), desktop.bottom() - handhold.height())};
}

}  // namespace

BuilderLayout::BuilderLayout(QWidget* builder, Ui::QBQueryBuilderWidget* ui)
    : QObject(builder), m_builder(builder), m_ui(ui) {
    ui->horizontalSplitter->setSizes(initialPaneWidths);
    m_hiddenWidths = {{ui->objectTreePanel, initialPaneWidths.front()},
                      {ui->previewContainer, initialPaneWidths.back()}};
    builder->installEventFilter(this);
    for (const QSplitter* splitter : {ui->horizontalSplitter, ui->verticalSplitter})
        connect(splitter, &QSplitter::splitterMoved, this, [this] { m_wanted.reset(); });
}

// ---- panes ----

/// Of a hidden pane, the one that it had. The splitter has no widths before the builder shows.
int BuilderLayout::widthOf(QWidget* pane) const {
    if (pane->isHidden() || !m_wasShown) return m_hiddenWidths.value(pane);
    return m_ui->horizontalSplitter->sizes()[m_ui->horizontalSplitter->indexOf(pane)];
}

BuilderLayout::Panes BuilderLayout::panes() const {
    if (m_wanted) return *m_wanted;
    return {m_wasShown ? m_ui->diagramArea->height() : -1, widthOf(m_ui->objectTreePanel),
            widthOf(m_ui->previewContainer)};
}

/// What a pane gives up when it is hidden, and takes back, is the diagram's: left alone, the
/// splitter would spread it over all panes.
void BuilderLayout::togglePane(QWidget* pane) {
    m_wanted.reset();
    QSplitter* const splitter = m_ui->horizontalSplitter;
    const int index = splitter->indexOf(pane);
    QList<int> widths = splitter->sizes();
    const bool isShowing = pane->isHidden();
    const int width = widthOf(pane);
    if (!isShowing) m_hiddenWidths[pane] = width;
    const int change = isShowing ? width : -width;
    widths[index] += change;
    widths[diagramIndex] -= change;
    pane->setHidden(!isShowing);
    splitter->setSizes(widths);
}

void BuilderLayout::placePanes(const Panes& panes) {
    QSplitter* const splitter = m_ui->horizontalSplitter;
    QList<int> widths = {panes.treeWidth, 0, panes.previewWidth};
    for (int i = 0; i < widths.size(); ++i) {
        QWidget* const pane = splitter->widget(i);
        if (pane->isHidden()) m_hiddenWidths[pane] = std::exchange(widths[i], 0);
    }
    // Left to itself, the diagram could end with nothing.
    widths[diagramIndex] = std::max(0, total(splitter) - widths.front() - widths.back());
    splitter->setSizes(widths);
    if (panes.diagramHeight < 0) return;
    const int height = total(m_ui->verticalSplitter);
    m_ui->verticalSplitter->setSizes(
        {panes.diagramHeight, std::max(0, height - panes.diagramHeight)});
}

bool BuilderLayout::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_builder && event->type() == QEvent::Show) shown();
    // The panes get their new sizes after this.
    if (watched == m_builder && event->type() == QEvent::Resize && m_wanted)
        QTimer::singleShot(0, this, &BuilderLayout::resized);
    return false;
}

void BuilderLayout::shown() {
    m_wasShown = true;
    if (!m_wanted) return;
    placePanes(*m_wanted);
    if (!m_builder->window()->isMaximized()) m_wanted.reset();
}

/// Window managers maximise after the builder shows, in one step or in several.
void BuilderLayout::resized() {
    if (!m_wanted || !m_builder->isVisible()) return;
    if (m_builder->window()->isMaximized())
        placePanes(*m_wanted);
    else
        m_wanted.reset();
}

// ---- the text ----

QString BuilderLayout::text() const {
    const QWidget* const window = m_builder->window();
    const Panes now = panes();
    NuvoJson json;
    json.create("ShowMaximized")->writeBool(window->isMaximized());
    json.create("X")->writeInteger(window->x());
    json.create("Y")->writeInteger(window->y());
    json.create("Width")->writeInteger(window->width());
    json.create("Height")->writeInteger(window->height());
    json.create("DiagramHeight")->writeInteger(now.diagramHeight);
    const bool isTreeShown = !m_ui->objectTreePanel->isHidden();
    json.create("ObjectTreeVisible")->writeBool(isTreeShown);
    if (isTreeShown) json.create("ObjectTreeWidth")->writeInteger(now.treeWidth);
    const bool isPreviewShown = !m_ui->previewContainer->isHidden();
    json.create("PreviewVisible")->writeBool(isPreviewShown);
    if (isPreviewShown) json.create("PreviewWidth")->writeInteger(now.previewWidth);
    return QString::fromStdString(json.serialise());
}

void BuilderLayout::load(const QString& text) {
    const NuvoJson json(text.toStdString());
    if (!json.getIsValidJson()) return;
    const Panes now = panes();
    const Panes asked{lengthOr(json, "DiagramHeight", now.diagramHeight),
                      lengthOr(json, "ObjectTreeWidth", now.treeWidth),
                      // The tree's, not the preview's: a preview that never had a width is to be
                      // as wide as the pane on the other side.
                      lengthOr(json, "PreviewWidth", now.treeWidth)};
    placeWindow(json);
    m_ui->objectTreePanel->setVisible(boolOr(json, "ObjectTreeVisible", true));
    m_ui->previewContainer->setVisible(boolOr(json, "PreviewVisible", true));
    m_wanted = asked;
    if (m_builder->isVisible()) shown();
}

void BuilderLayout::placeWindow(const NuvoJson& json) {
    QWidget* const window = m_builder->window();
    if (boolOr(json, "ShowMaximized", false)) {
        window->setWindowState(window->windowState() | Qt::WindowMaximized);
        return;
    }
    window->setWindowState(window->windowState() & ~Qt::WindowMaximized);
    const QSize size(integerOr(json, "Width", -1), integerOr(json, "Height", -1));
    if (size.width() >= 0 && size.height() >= 0) window->resize(usableSize(window, size));
    const QPoint position(integerOr(json, "X", noPosition), integerOr(json, "Y", noPosition));
    if (position.x() != noPosition && position.y() != noPosition)
        window->move(usablePosition(window, position));
}

// ---- what a host calls ----

QString QBQueryBuilderWidget::obtainWidgetLayoutJsonString() const {
    return m_layout->text();
}

void QBQueryBuilderWidget::loadWidgetLayoutJsonString(const QString& text) {
    m_layout->load(text);
    updateButtonIcons();
}

QString QBQueryBuilderWidget::obtainDiagramLayoutJsonString() const {
    return QString::fromStdString(ui->diagramPanel->saveLayout());
}

void QBQueryBuilderWidget::loadDiagramLayoutJsonString(const QString& text) {
    ui->diagramPanel->restoreLayout(text.toStdString());
}

QMap<QString, QVariant> QBQueryBuilderWidget::obtainGlobalPreferences() const {
    return {{relationModeKey, ui->diagramPanel->relationMode()}};
}

void QBQueryBuilderWidget::loadGlobalPreferences(const QMap<QString, QVariant>& preferences) {
    const auto mode = preferences.constFind(relationModeKey);
    if (mode != preferences.constEnd()) ui->diagramPanel->setRelationMode(mode->toString());
}

}  // namespace QB
