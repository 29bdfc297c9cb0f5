#include <QLabel>
#include <QPushButton>
#include <QtTest>

#include "frame/query_builder_widget.h"
#include "platform/tolk/translation.h"
#include "support/host_callbacks.h"

namespace QB {

class GermanBuilderTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aChangeOfLanguageReachesTheWidgetsThatShow() {
        const Test::HostCallbacks host;
        QBQueryBuilderWidget builder;
        builder.show();
        QVERIFY(buttons(builder).contains("Cancel"));

        QVERIFY(Tolk::setLanguage(QLocale(QLocale::German)));
        QTRY_VERIFY(buttons(builder).contains("Abbrechen"));
        QVERIFY(!buttons(builder).contains("Cancel"));

        QVERIFY(Tolk::setLanguage(QLocale::c()));
        QTRY_VERIFY(buttons(builder).contains("Cancel"));
    }

    void whatIsMadeInGermanIsGermanFromTheStart() {
        const Test::HostCallbacks host;
        QVERIFY(Tolk::setLanguage(QLocale(QLocale::German)));
        const QBQueryBuilderWidget builder;
        QVERIFY(buttons(builder).contains("Abbrechen"));
        Tolk::setLanguage(QLocale::c());
    }

private:
    /// The texts of all buttons, without access keys.
    static QStringList buttons(const QWidget& widget) {
        QStringList texts;
        for (const auto* button : widget.findChildren<QAbstractButton*>())
            texts.append(button->text().remove(QLatin1Char('&')));
        return texts;
    }
};

}  // namespace QB

QTEST_MAIN(QB::GermanBuilderTest)
#include "german_builder_test.moc"
