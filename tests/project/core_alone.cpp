// Links every object file of the core rooms with Qt Core alone; see CMakeLists.txt.
#include <QCoreApplication>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return 0;
}
