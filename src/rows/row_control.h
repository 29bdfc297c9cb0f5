#pragma once

#include <type_traits>

#include "rows/row_interfaces.h"
#include "widgets/label.h"

namespace QB {

/// A small image at the end of a row that acts when it is clicked. Image, tooltip and name follow
/// the language and, where the image is drawn, the theme.
class QBRowControl : public QBLabel {
    Q_OBJECT

public:
    enum Kind { None, AddRow, AddBracket, Delete };

    explicit QBRowControl(QWidget* parent = nullptr);

    /// Makes the label clickable.
    void setKind(Kind kind);

protected:
    void changeEvent(QEvent* event) override;

private:
    void showKind();

    Kind m_kind = None;
};

/// Makes clicks on @p label that signal of @p row.
template <typename Row>
void connectClick(QBLabel* label, Row* row, void (Row::*signal)()) {
    label->setClickable(true);
    QObject::connect(label, &QBLabel::clicked, row, signal);
}

/// Makes the controls of @p row, those that its interfaces name, what they are.
template <typename Row>
void connectControls(Row* row) {
    const auto connectControl = [row](QBLabel* label, QBRowControl::Kind kind, auto signal) {
        static_cast<QBRowControl*>(label)->setKind(kind);
        connectClick(label, row, signal);
    };
    if constexpr (std::is_base_of_v<IQBNestedListRowWidgetAddRowSupported, Row>)
        connectControl(row->addRowLabel(), QBRowControl::AddRow, &Row::addRowButtonClicked);
    if constexpr (std::is_base_of_v<IQBNestedListRowWidgetAddBracketSupported, Row>)
        connectControl(row->addBracketLabel(), QBRowControl::AddBracket,
                       &Row::addBracketButtonClicked);
    if constexpr (std::is_base_of_v<IQBNestedListRowWidgetDeleteSupported, Row>)
        connectControl(row->deleteLabel(), QBRowControl::Delete, &Row::deleteButtonClicked);
}

}  // namespace QB
