#include "popups/input_dialog.h"

#include <QPushButton>

#include "platform/tolk/tolk.h"
#include "popups/popup_content.h"
#include "ui_input_dialog.h"

namespace QB {

class QBInputDialog::Private {
public:
    void retranslate();

    Ui::QBInputDialog ui;
    QWidget* content = nullptr;  // owned by the layout's widget
};

void QBInputDialog::Private::retranslate() {
    ui.buttonBox->button(QDialogButtonBox::Ok)->setText(Tolk::localize(Tolk::TextOk));
    ui.buttonBox->button(QDialogButtonBox::Cancel)->setText(Tolk::localize(Tolk::TextCancel));
}

QBInputDialog::QBInputDialog(QWidget* parent) : QDialog(parent), d(std::make_unique<Private>()) {
    d->ui.setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(true);
    d->retranslate();
    const QDialogButtonBox* buttons = d->ui.buttonBox;
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { closeDialog(Accepted); });
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { closeDialog(Rejected); });
}

QBInputDialog::~QBInputDialog() = default;

void QBInputDialog::setContent(QWidget* content) {
    replaceContent(d->ui.gridLayout_2, d->content, content);
    d->content = content;
    if (content) content->setFocus();
}

QWidget* QBInputDialog::content() const {
    return d->content;
}

void QBInputDialog::setCancelHidden(bool isHidden) {
    d->ui.buttonBox->button(QDialogButtonBox::Cancel)->setHidden(isHidden);
}

void QBInputDialog::closeDialog(int code) {
    done(code);
}

void QBInputDialog::changeEvent(QEvent* event) {
    // The button box writes its own texts on the same event; it has done so before.
    QDialog::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) d->retranslate();
}

}  // namespace QB
