#include "apps/joinery-desk/diagram_actions.h"

#include <QAction>
#include <QFileDialog>
#include <QMenu>

#include "apps/joinery-desk/diagram_picture.h"
#include "canvas/view/canvas_commands.h"

namespace QB::Desk {

DiagramActions::DiagramActions(QMenu* menu) : QObject(menu), m_menu(menu) {
    zoomIn = add(QT_TR_NOOP("Zoom &In"), QKeySequence::ZoomIn, &QBCanvasCommands::zoomIn);
    zoomOut = add(QT_TR_NOOP("Zoom &Out"), QKeySequence::ZoomOut, &QBCanvasCommands::zoomOut);
    zoomReset = add(QT_TR_NOOP("Actual &Size"), Qt::CTRL + Qt::Key_0, &QBCanvasCommands::zoomReset);
    fit = add(QT_TR_NOOP("&Fit to View"), Qt::CTRL + Qt::Key_9, &QBCanvasCommands::fitToView);
    overview = add(QT_TR_NOOP("O&verview Map"), Qt::CTRL + Qt::SHIFT + Qt::Key_M);
    overview->setCheckable(true);
    menu->addSeparator();
    arrange = add(QT_TR_NOOP("&Arrange Diagram"), Qt::CTRL + Qt::SHIFT + Qt::Key_L,
                  &QBCanvasCommands::arrange);
    menu->addSeparator();
    savePicture = add(QT_TR_NOOP("Save Diagram as &Picture…"), Qt::CTRL + Qt::SHIFT + Qt::Key_P);
    connect(overview, &QAction::toggled, this, [this](bool shown) {
        if (m_commands) m_commands->setOverviewVisible(shown);
    });
    connect(savePicture, &QAction::triggered, this, &DiagramActions::askForPicture);
    retranslate();
    refresh();
}

QAction* DiagramActions::add(const char* text, const QKeySequence& keys,
                             void (QBCanvasCommands::*command)()) {
    QAction* const action = m_menu->addAction(QString());
    action->setShortcut(keys);
    m_texts.append({action, text});
    if (command)
        connect(action, &QAction::triggered, this, [this, command] {
            if (m_commands) (m_commands->*command)();
        });
    return action;
}

void DiagramActions::retranslate() {
    for (const auto& [action, text] : qAsConst(m_texts))
        action->setText(tr(text));
}

void DiagramActions::setCommands(QBCanvasCommands* commands) {
    if (m_commands) m_commands->disconnect(this);
    m_commands = commands;
    if (commands) {
        overview->setChecked(commands->isOverviewVisible());
        connect(commands, &QObject::destroyed, this, &DiagramActions::refresh);
    }
    refresh();
}

void DiagramActions::refresh() {
    for (const auto& [action, text] : qAsConst(m_texts))
        action->setEnabled(m_commands);
}

/// The dialog is not waited for: the window stays alive meanwhile.
void DiagramActions::askForPicture() {
    auto* const dialog =
        new QFileDialog(m_menu->parentWidget(), tr("Save Diagram as Picture"), QString(),
                        tr("PNG pictures (*.png);;SVG drawings (*.svg);;PDF documents (*.pdf)"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("png"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    // The kind chosen is the suffix of a name without one.
    connect(dialog, &QFileDialog::filterSelected, dialog, [dialog](const QString& filter) {
        dialog->setDefaultSuffix(filter.section(QLatin1String("*."), 1).chopped(1));
    });
    connect(dialog, &QFileDialog::fileSelected, this, &DiagramActions::offerFile);
    dialog->open();
}

void DiagramActions::offerFile(const QString& file) {
    if (!m_commands) return;
    const QString message = saveDiagramPicture(*m_commands, file);
    if (message.isEmpty()) return void(Q_EMIT pictureSaved(file));
    Q_EMIT pictureFailed(message);
}

}  // namespace QB::Desk
