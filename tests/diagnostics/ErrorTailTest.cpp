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
    std::vector<long> reportedNumbers() const
    {
        std::vector<long> numbers;
        for (const auto& report : host.utilities().errors()) numbers.push_back(report.number);
        return numbers;
    }

    ScopedHeadlessHost host;
};

TEST_F(ErrorTail, LeaveFormKeepsTheResultAsItStoodAndSkipsTheRest)
{
    int result = 0;
    bool laterStatementRan = false;
    Procedure procedure(cls::AddToPipeClass, "Function CheckValid");
    const bool completed = procedure.run([&] {
        result = 1;
        const DeviceRef unset;
        result = must(unset).CreateOption();
        laterStatementRan = true;
    });

    EXPECT_FALSE(completed);
    EXPECT_EQ(result, 1);
    EXPECT_FALSE(laterStatementRan);
    const ErrorReport expected{err::ObjectNotSet, "Object variable not set", "QuorlPipeSpecComp.AddToPipeClass",
                               "Function CheckValid"};
    EXPECT_EQ(host.utilities().errors(), std::vector<ErrorReport>{expected});
    EXPECT_EQ(procedure.failures(), 1);
}

TEST_F(ErrorTail, ResumeFormRunsLaterStatementsAndReportsEachFailure)
{
    Procedure procedure(cls::PipeSpecSelector, "Sub InitSelectors");
    DeviceRef chapter;
    std::vector<std::string> done;
    EXPECT_FALSE(procedure.step([&] { chapter = failingCall<DeviceRef>(err::Deleted); }));
    // The statement after goes on with the value left unset, and fails in turn.
    EXPECT_FALSE(procedure.step([&] { done.push_back(must(chapter).Name()); }));
    EXPECT_TRUE(procedure.step([&] { done.emplace_back("third"); }));

    EXPECT_EQ(done, std::vector<std::string>{"third"});
    EXPECT_EQ(reportedNumbers(), (std::vector<long>{err::Deleted, err::ObjectNotSet}));
    EXPECT_EQ(procedure.failures(), 2);
    for (const auto& report : host.utilities().errors()) EXPECT_EQ(report.function, "Sub InitSelectors");
}

TEST_F(ErrorTail, RetryStopsAtTheFirstSuccess)
{
    int runs = 0;
    Procedure procedure(cls::PipeSpecNDRange, "Sub Refresh");
    EXPECT_TRUE(procedure.retry(
        [&] {
            if (++runs < 3) failingCall(err::ReadOnly);
        },
        5));
    EXPECT_EQ(runs, 3);
    EXPECT_EQ(reportedNumbers(), (std::vector<long>{err::ReadOnly, err::ReadOnly}));
}

TEST_F(ErrorTail, RetryGivesUpAtTheLimit)
{
    int runs = 0;
    Procedure procedure(cls::PipeSpecNDRange, "Sub Refresh");
    EXPECT_FALSE(procedure.retry(
        [&] {
            ++runs;
            failingCall(err::ReadOnly);
        },
        3));
    EXPECT_EQ(runs, 3);
    EXPECT_EQ(procedure.failures(), 3);

    runs = 0;
    EXPECT_FALSE(procedure.retry(
        [&] {
            ++runs;
            failingCall(err::ReadOnly);
        },
        0));
    EXPECT_EQ(runs, 1) << "the statement runs at least once";
}

TEST_F(ErrorTail, IgnoredFailureIsNotReportedAndDoesNotStopTheBody)
{
    bool result = true;
    bool laterStatementRan = false;
    Procedure procedure(cls::AddToPipeClass, "Function CheckValid");
    const bool completed = procedure.run([&] {
        EXPECT_FALSE(procedure.ignoring([&] { result = failingCall<bool>(err::NotSupported); }));
        laterStatementRan = true;
    });

    EXPECT_TRUE(completed);
    EXPECT_TRUE(result);
    EXPECT_TRUE(laterStatementRan);
    EXPECT_TRUE(host.utilities().errors().empty());
    EXPECT_EQ(procedure.failures(), 0);
}

// A procedure of its own, called from another one.
int innerProcedure()
{
    int result = -1;
    Procedure(cls::SelectorProp, "Function Inner").run([&] { result = failingCall<int>(err::CycleRefused); });
    return result;
}

TEST_F(ErrorTail, NoFailureCrossesAProcedureBoundary)
{
    int inner = 0;
    const bool completed = Procedure(cls::FrmPCOMRange, "Sub Outer").run([&] { inner = innerProcedure(); });

    EXPECT_TRUE(completed);
    EXPECT_EQ(inner, -1);
    ASSERT_EQ(host.utilities().errors().size(), 1U);
    EXPECT_EQ(host.utilities().errors()[0].cls, "QuorlPipeSpecComp.SelectorProp");
    EXPECT_EQ(host.utilities().errors()[0].function, "Function Inner");
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
