#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <optional>

class NuvoJson;
class QWidget;

namespace Ui {
class QBQueryBuilderWidget;
}

namespace QB {

/// Where the window of a builder and its panes are: keeps it as a text, and brings it back.
/// docs/layout-files.md has the text.
///
/// The diagram has what the panes leave it. A pane that is hidden keeps the width that it had.
/// Panes that are set before the builder was first shown, when nothing in it has its place, are
/// set again when it shows, and when its window is maximised, until the user sets them.
/// Ownership: a child of the builder. Thread: main.
class BuilderLayout : public QObject {
public:
    BuilderLayout(QWidget* builder, Ui::QBQueryBuilderWidget* ui);

    QString text() const;
    /// What is no JSON changes nothing.
    void load(const QString& text);
    /// Shows or hides the object tree or the preview.
    void togglePane(QWidget* pane);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Panes {
        int diagramHeight;  // -1: not known
        int treeWidth;
        int previewWidth;
    };

    /// As they are, or are to be.
    Panes panes() const;
    void placeWindow(const NuvoJson& json);
    void placePanes(const Panes& panes);
    int widthOf(QWidget* pane) const;
    void shown();
    void resized();

    QWidget* const m_builder;              // not owned: the parent
    Ui::QBQueryBuilderWidget* const m_ui;  // not owned: the builder's
    QHash<QWidget*, int> m_hiddenWidths;   // that hidden panes had, or are to have
    std::optional<Panes> m_wanted;         // until there is room for them
    bool m_wasShown = false;
};

}  // namespace QB
