#include <gtest/gtest.h>

#include <QCoreApplication>
#include <memory>

namespace {

/// QtSql wants an application object before it loads drivers.
class Application : public ::testing::Environment {
public:
    void SetUp() override { m_application = std::make_unique<QCoreApplication>(m_count, m_names); }
    void TearDown() override { m_application.reset(); }

private:
    int m_count = 1;
    char m_name[5] = "test";
    char* m_names[2] = {m_name, nullptr};
    std::unique_ptr<QCoreApplication> m_application;
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new Application);

}  // namespace
