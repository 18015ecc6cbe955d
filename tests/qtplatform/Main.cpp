// The test program of the Qt stand-ins: the application object lives while
// the tests run, not while they are only listed, so that listing them needs
// no display.

#include <QApplication>

#include <gtest/gtest.h>

#include <memory>

namespace {

class QtApplication final : public ::testing::Environment {
public:
    QtApplication(int& argc, char** argv) : argc_(argc), argv_(argv) {}
    void SetUp() override { application_ = std::make_unique<QApplication>(argc_, argv_); }
    void TearDown() override { application_.reset(); }

private:
    int& argc_;
    char** argv_;
    std::unique_ptr<QApplication> application_;
};

}  // namespace

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new QtApplication(argc, argv));  // Owned by GoogleTest.
    return RUN_ALL_TESTS();
}
