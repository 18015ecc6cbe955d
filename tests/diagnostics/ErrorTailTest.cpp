#include "diagnostics/ErrorTail.h"
#include "diagnostics/HeadlessHost.h"
#include "diagnostics/Messages.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace pipespec::diagnostics {
namespace {

// A platform call that fails instead of giving its T.
template <class T = void>
T failingCall(long number)
{
    throw PlatformError(number, "platform error " + std::to_string(number));
}

class ErrorTail : public ::testing::Test {
protected:
    // "number description class function" per report.
    std::vector<std::string> reports() const
    {
        std::vector<std::string> out;
        for (const auto& r : host.utilities().errors())
            out.push_back(std::to_string(r.number) + " " + r.description + " " + r.cls + " " + r.function);
        return out;
    }

    ScopedHeadlessHost host;
};

TEST_F(ErrorTail, LeaveFormKeepsTheResultAsItStoodAndSkipsTheRest)
{
    int result = 0;
    bool laterStatementRan = false;
    Procedure procedure(cls::AddToPipeClass, "Function CheckValid");
    EXPECT_FALSE(procedure.run([&] {
        result = 1;
        const DeviceRef unset;
        result = must(unset).CreateOption();
        laterStatementRan = true;
    }));
    EXPECT_EQ(result, 1);
    EXPECT_FALSE(laterStatementRan);
    EXPECT_EQ(reports(), std::vector<std::string>{"91 Object variable not set QuorlPipeSpecComp.AddToPipeClass "
                                                  "Function CheckValid"});
    EXPECT_EQ(procedure.failures(), 1);
}

TEST_F(ErrorTail, RetryStopsAtTheFirstSuccessOrGivesUpAtTheLimit)
{
    int runs = 0;
    Procedure procedure(cls::PipeSpecNDRange, "Sub Refresh");
    const auto failTwice = [&] {
        if (++runs < 3) failingCall(err::ReadOnly);
    };
    EXPECT_TRUE(procedure.retry(failTwice, 5));
    EXPECT_EQ(runs, 3);
    EXPECT_EQ(procedure.failures(), 2);
    runs = 0;
    EXPECT_FALSE(procedure.retry(failTwice, 2));
    EXPECT_EQ(runs, 2);
    runs = 0;
    EXPECT_FALSE(procedure.retry(failTwice, 0));
    EXPECT_EQ(runs, 1) << "the statement runs at least once";
    EXPECT_EQ(host.utilities().errors().size(), 5U);
}

TEST_F(ErrorTail, EveryKindOfExceptionBecomesAReport)
{
    Procedure procedure(cls::PipeCompSearch, "Sub Search");
    procedure.step([] { throw PlatformError(err::NameInUse, "Name in use"); });
    procedure.step([] { throw std::bad_alloc(); });
    procedure.step([] { throw std::out_of_range("index 7"); });
    procedure.step([] { throw 42; });
    const auto& errors = host.utilities().errors();
    ASSERT_EQ(errors.size(), 4U);
    EXPECT_EQ(errors[0].number, err::NameInUse);
    EXPECT_EQ(errors[0].description, "Name in use");
    EXPECT_EQ(errors[1].number, err::OutOfMemory);
    EXPECT_EQ(errors[2].number, err::Internal);
    EXPECT_EQ(errors[2].description, "index 7");
    EXPECT_EQ(errors[3].number, err::Internal);
    EXPECT_EQ(errors[3].description, "Unknown error");
}

}  // namespace
}  // namespace pipespec::diagnostics
