#pragma once

#include <QCoreApplication>
#include <QTranslator>

namespace QB::Test {

/// Every text of the library in capitals: a language that each text can be seen to follow.
class Capitals : public QTranslator {
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override {
        return qstrcmp(context, "Tolk") == 0 ? QString::fromUtf8(source).toUpper() : QString();
    }
};

}  // namespace QB::Test
