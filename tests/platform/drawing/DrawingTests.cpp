// Gives the tests an application without a screen.
#include <gtest/gtest.h>

#include <QGuiApplication>

#include <memory>

namespace {

class Application : public testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        application = std::make_unique<QGuiApplication>(count, arguments);
    }
    void TearDown() override { application.reset(); }

private:
    int count = 1;
    char name[14] = "drawing_tests";
    char* arguments[2] = {name, nullptr};
    std::unique_ptr<QGuiApplication> application;
};

[[maybe_unused]] const testing::Environment* const environment = testing::AddGlobalTestEnvironment(new Application);

}  // namespace
