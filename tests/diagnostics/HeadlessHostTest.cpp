#include "diagnostics/ErrorTail.h"
#include "diagnostics/HeadlessHost.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "Fakes.h"
#include "objectmodel/ExpectError.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pipespec::diagnostics {
namespace {

using checks::errorNumber;

class TraceRecording : public ::testing::Test {
protected:
    std::vector<std::string> formatted() const
    {
        std::vector<std::string> out;
        for (const auto& line : host.tools().lines()) out.push_back(HeadlessTools::format(line));
        return out;
    }

    ScopedHeadlessHost host;
    Trace checkValid{cls::AddToPipeClass, "CheckValid"};
};

TEST_F(TraceRecording, RecordsEveryKindWithClassAndFunction)
{
    checkValid.enter();
    checkValid.text("is a folder");
    checkValid.object("mPipeClass", std::make_shared<fakes::NamedObject>("@40|PC-A1"));
    checkValid.object("CDevObject", nullptr);
    checkValid.value("checkResult", Variant(2.5));
    checkValid.leaveText("QSpec Is Nothing");
    checkValid.leave();

    EXPECT_EQ(formatted(), (std::vector<std::string>{
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: enter",
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: is a folder",
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: mPipeClass = @40|PC-A1",
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: CDevObject = Nothing",
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: checkResult = 2.5",
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: leave: QSpec Is Nothing",
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: leave",
                           }));
    EXPECT_EQ(host.tools().lines()[1],
              (TraceLine{TraceKind::Text, "QuorlPipeSpecComp.AddToPipeClass", "CheckValid", "is a folder"}));
}

TEST_F(TraceRecording, ValuesAreRenderedAsText)
{
    EXPECT_EQ(describeValue(Variant()), "Empty");
    EXPECT_EQ(describeValue(Variant(true)), "True");
    EXPECT_EQ(describeValue(Variant(10003)), "10003");
    EXPECT_EQ(describeValue(Variant(std::make_shared<fakes::NamedObject>("@40|X"))), "@40|X");
    EXPECT_EQ(describeValue(Variant(CollectionRef())), "Nothing");
}

TEST_F(TraceRecording, SwitchedOffFunctionRecordsNothing)
{
    host.tools().setTraceEnabled(cls::AddToPipeClass, "CheckValid", false);
    const Trace otherFunction(cls::AddToPipeClass, "MapCDeviceToXXX");
    const Trace sameNameOtherClass(cls::PipeSpecComp, "CheckValid");

    checkValid.text("hidden");
    otherFunction.text("shown");
    sameNameOtherClass.text("shown too");
    EXPECT_FALSE(checkValid.enabled());
    EXPECT_TRUE(otherFunction.enabled());
    EXPECT_EQ(formatted(), (std::vector<std::string>{"QuorlPipeSpecComp.AddToPipeClass MapCDeviceToXXX: shown",
                                                     "QuorlPipeSpecComp.PipeSpecComp CheckValid: shown too"}));

    host.tools().setTraceEnabled(cls::AddToPipeClass, "CheckValid", true);
    host.tools().clear();
    checkValid.text("back");
    EXPECT_EQ(formatted(), std::vector<std::string>{"QuorlPipeSpecComp.AddToPipeClass CheckValid: back"});
}

TEST_F(TraceRecording, GlobalSwitchSilencesEveryFunction)
{
    host.tools().setTraceEnabled(false);
    checkValid.enter();
    Trace(cls::SelectorProp, "Init").text("x");
    EXPECT_TRUE(host.tools().lines().empty());
    EXPECT_FALSE(checkValid.enabled());
}

TEST_F(TraceRecording, AFailingTraceDoesNotDisturbTheProcedure)
{
    bool finished = false;
    const bool completed = Procedure(cls::AddToPipeClass, "Sub CalcMinMaxSpec").run([&] {
        checkValid.object("MinMaxSpec", std::make_shared<fakes::NamedObject>(std::nullopt));
        finished = true;
    });
    EXPECT_TRUE(completed);
    EXPECT_TRUE(finished);
    EXPECT_TRUE(host.utilities().errors().empty());
}

TEST(HeadlessMessageBox, AnswersFromTheScriptThenByDefault)
{
    HeadlessUtilities utilities;
    utilities.scriptAnswer(mb::AnswerNo);
    utilities.scriptAnswer(mb::AnswerOk);

    EXPECT_EQ(utilities.MessageBox("add anyway?", mb::YesNoExclamation, "Tubrix Designer"), mb::AnswerNo);
    EXPECT_EQ(utilities.MessageBox("second", mb::YesNoExclamation, "t"), mb::AnswerOk)
        << "the script wins over the box kind";
    EXPECT_EQ(utilities.MessageBox("yes or no", mb::YesNoExclamation, "t"), mb::AnswerYes);
    EXPECT_EQ(utilities.MessageBox("note", mb::Exclamation, "t"), mb::AnswerOk);
    EXPECT_EQ(utilities.MessageBox("note", mb::Critical | mb::OkOnly, "t"), mb::AnswerOk);
    utilities.setYesNoDefault(mb::AnswerNo);
    EXPECT_EQ(utilities.MessageBox("yes or no", mb::YesNoExclamation, "t"), mb::AnswerNo);

    ASSERT_EQ(utilities.messageBoxes().size(), 6U);
    EXPECT_EQ(utilities.messageBoxes()[0],
              (MessageBoxRecord{"add anyway?", mb::YesNoExclamation, "Tubrix Designer", mb::AnswerNo}));
}

TEST(HeadlessUtilities, KeepsReportsLogLinesAndRefreshesUntilCleared)
{
    HeadlessUtilities utilities;
    utilities.ReportError({err::ReadOnly, "read-only"}, cls::NDRangeOverView, "Sub Fill");
    utilities.WriteLog("t=12ms");
    utilities.BeginRefresh();
    utilities.BeginRefresh();
    utilities.scriptAnswer(mb::AnswerNo);

    const ErrorReport expected{err::ReadOnly, "read-only", "QuorlPipeSpecComp.NDRangeOverView", "Sub Fill"};
    EXPECT_EQ(utilities.errors(), std::vector<ErrorReport>{expected});
    EXPECT_EQ(utilities.logLines(), std::vector<std::string>{"t=12ms"});
    EXPECT_EQ(utilities.refreshCount(), 2);

    utilities.clear();
    EXPECT_TRUE(utilities.errors().empty());
    EXPECT_TRUE(utilities.logLines().empty());
    EXPECT_EQ(utilities.refreshCount(), 0);
    EXPECT_EQ(utilities.MessageBox("q", mb::YesNoExclamation, "t"), mb::AnswerNo) << "the script survives clear";
}

TEST(HeadlessUtilities, TranslatesWithItsLanguage)
{
    HeadlessUtilities utilities;
    EXPECT_EQ(utilities.Translate(msg::PipeClasses), "Rohrklassen");
    utilities.setLanguage(LanguageTable::load(LanguageTable::shippedPath("en")));
    EXPECT_EQ(utilities.Translate(msg::PipeClasses), "Pipe classes");
}

TEST(HeadlessUtilities, StandardTablePathsAreAMapOfNumbers)
{
    HeadlessUtilities utilities;
    EXPECT_EQ(utilities.StandardTablePath(4849), "@3D|00|VFCD");
    utilities.setStandardTablePath(4849, "@3D|01|VFCD");
    utilities.setStandardTablePath(17, "@3D|17");
    EXPECT_EQ(utilities.StandardTablePath(4849), "@3D|01|VFCD");
    EXPECT_EQ(utilities.StandardTablePath(17), "@3D|17");
    EXPECT_EQ(errorNumber([&] { (void)utilities.StandardTablePath(18); }), err::Configuration);
}

TEST(Services, DefaultsAreHeadlessAndMadeOnFirstUse)
{
    const ScopedService<IGlobalTools> noTools(setTools, nullptr);
    const ScopedService<IUtilities> noUtilities(setUtilities, nullptr);
    EXPECT_NE(dynamic_cast<HeadlessTools*>(&tools()), nullptr);
    EXPECT_NE(dynamic_cast<HeadlessUtilities*>(&utilities()), nullptr);
    EXPECT_EQ(&tools(), &tools());
}

TEST(Services, ScopedHostReplacesAndRestores)
{
    IUtilities* const outer = &utilities();
    {
        const ScopedHeadlessHost host;
        EXPECT_EQ(&utilities(), &host.utilities());
        Procedure(cls::frmNewSelector, "Sub cmdOK_Click").run([] { throw PlatformError(err::NameInUse, "Name in use"); });
        EXPECT_EQ(host.utilities().errors().size(), 1U);
    }
    EXPECT_EQ(&utilities(), outer);
}

TEST(Services, NamesComeFromTheInstalledTable)
{
    const ScopedHeadlessHost host;
    EXPECT_EQ(errorNumber([] { (void)names(); }), err::Configuration);
    const auto table = std::make_shared<fakes::OneLeafNames>();
    host.tools().setNames(table);
    EXPECT_EQ(&names(), table.get());
    EXPECT_EQ(names().VFCD(), "VFCD");
}

}  // namespace
}  // namespace pipespec::diagnostics
