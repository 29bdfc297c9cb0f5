#include "popups/popup_content.h"

#include <QLayout>
#include <QPushButton>

namespace QB {

void replaceContent(QLayout* layout, QWidget* old, QWidget* content) {
    if (old == content) return;
    if (old) {
        layout->removeWidget(old);
        old->hide();
        old->deleteLater();
    }
    if (!content) return;
    layout->addWidget(content);
    const auto buttons = content->findChildren<QPushButton*>();
    for (QPushButton* button : buttons)
        button->setAutoDefault(false);
}

}  // namespace QB
