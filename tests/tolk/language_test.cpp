#include <gtest/gtest.h>

#include <QCoreApplication>

#include "platform/tolk/tolk.h"
#include "platform/tolk/translation.h"

namespace {

class Language : public testing::Test {
protected:
    ~Language() override { Tolk::setLanguage(QLocale::c()); }

private:
    int m_argc = 1;
    char m_name[5] = "test";
    char* m_argv[2] = {m_name, nullptr};
    QCoreApplication m_application{m_argc, m_argv};
};

TEST_F(Language, GermanIsShownAndEnglishComesBack) {
    EXPECT_EQ(Tolk::localize(Tolk::TextCancel), "Cancel");
    EXPECT_TRUE(Tolk::setLanguage(QLocale(QLocale::German, QLocale::Austria)));
    EXPECT_EQ(Tolk::localize(Tolk::TextCancel), "Abbrechen");
    EXPECT_TRUE(Tolk::setLanguage(QLocale(QLocale::English)));
    EXPECT_EQ(Tolk::localize(Tolk::TextCancel), "Cancel");
}

TEST_F(Language, ArgumentsFillTheTranslatedText) {
    EXPECT_EQ(Tolk::localizeWithArgs(Tolk::TextNumberedSubquery, 3), "Subquery 3");
    Tolk::setLanguage(QLocale(QLocale::German));
    EXPECT_EQ(Tolk::localizeWithArgs(Tolk::TextNumberedSubquery, 12), "Unterabfrage 12");
}

TEST_F(Language, ALanguageWithoutTranslationShowsEnglishAndSaysSo) {
    Tolk::setLanguage(QLocale(QLocale::German));
    EXPECT_FALSE(Tolk::setLanguage(QLocale(QLocale::Icelandic)));
    EXPECT_EQ(Tolk::localize(Tolk::TextCancel), "Cancel");
    EXPECT_EQ(Tolk::translatedLanguages(), QStringList{"de"});
}

TEST_F(Language, AnIdOutsideTheTableIsAnEmptyText) {
    EXPECT_EQ(Tolk::localize(Tolk::TextCount), "");
    EXPECT_EQ(Tolk::localize(~0u), "");
}

}  // namespace
