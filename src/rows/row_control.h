#pragma once

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

}  // namespace QB
