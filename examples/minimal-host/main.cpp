// The builder on a SQLite file: minimal-host FILE [--grab PICTURE]
#include <QApplication>
#include <QTimer>
#include <cstdio>

#include "engine/engine_linux.h"
#include "frame/query_builder_widget.h"
#include "hostkit/database.h"
#include "hostkit/host_session.h"
#include "hostkit/threads.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QB::HostKit::installCallbacks();
    const QStringList arguments = app.arguments();
    QB::HostKit::Database database;
    const QString error =
        database.open(QB::HostKit::ConnectionSettings::sqliteFile(arguments.value(1)));
    if (!error.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    QB::QBEngine_LINUX engine;
    QB::QBQueryBuilderWidget builder;
    builder.setEngine(&engine);
    QB::HostKit::HostSession session(database, &engine);
    QObject::connect(&builder, &QB::QBQueryBuilderWidget::okDialogButtonClicked,
                     [](const QString& query, bool) { std::puts(qPrintable(query)); });
    QObject::connect(&builder, &QB::QBQueryBuilderWidget::cancelDialogButtonClicked, &builder,
                     &QWidget::close);
    builder.resize(1000, 600);
    builder.show();
    if (arguments.value(2) == "--grab")  // a picture of the window, for where there is no display
        QTimer::singleShot(1500, &builder,
                           [&] { app.exit(builder.grab().save(arguments.value(3)) ? 0 : 2); });
    return app.exec();
}
