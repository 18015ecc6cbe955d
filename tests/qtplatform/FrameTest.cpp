// The frame every control stands on, driven as the host and a user drive a
// control: the host's calls in their order, a click, a key, a language switch.

#include "diagnostics/Messages.h"
#include "frame/ControlFrame.h"
#include "support/World.h"

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>

#include <gmock/gmock.h>

namespace pipespec::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A control with a label that shows a message text, a button whose handler
// fails on demand, and a log of what the frame ran of its own work.
class Control final : public frame::ControlFrame {
public:
    explicit Control(std::vector<std::string>& log, std::string_view cls = cls::PipeSpecNDRange)
        : ControlFrame(cls),
          log_(log)
    {
        label = new QLabel(this);
        button = new QPushButton("Go", this);
        connectHandler(button, &QPushButton::clicked, "Sub cmdGo_Click", [this](bool) {
            log_.push_back("click");
            if (failNextClick) {
                failNextClick = false;
                throw PlatformError(err::InvalidCall, "the click failed");
            }
        });
        retranslate();
    }
    ~Control() override { log_.push_back("destroyed"); }
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    WorksetRef workset() const { return gWorkset; }
    UndoStateRef undoState() const { return m_PipeSpecUndoState; }

    QLabel* label;
    QPushButton* button;
    bool failNextClick = false;

protected:
    void Refresh() override { log_.push_back("Refresh"); }
    void shutdownParts() override { log_.push_back("Shutdown"); }
    void retranslate() override
    {
        label->setText(QString::fromStdString(diagnostics::utilities().Translate(msg::NominalDiameterRange)));
    }

private:
    std::vector<std::string>& log_;
};

class FrameTest : public ::testing::Test {
protected:
    support::World world;
    DeviceRef pipeClass = world.pipeClass(world.root(world.plant(), "@41"), "PC1", "10000");
    std::vector<std::string> log;
};

TEST_F(FrameTest, RollbackStateBecomesCurrentOnceTheControlHasAWorkset)
{
    Control control(log);
    const auto workset = world.workset();
    const auto before = workset->CurrentUndoState();
    const auto designers = workset->NewUndoState();

    // No state and no workset yet: nothing to make current.
    control.ActivateRollbackState(nullptr);
    EXPECT_THAT(world.trace("ActivateRollbackState"), ElementsAre("enter", "quit (no workset)"));
    // Given before the pipe class: stored, to take effect at the next call.
    world.tracer().clear();
    control.ActivateRollbackState(designers);
    EXPECT_THAT(world.trace("ActivateRollbackState"),
                ElementsAre("enter", "setting new m_PipeSpecUndoState", "quit (no workset)"));
    EXPECT_EQ(workset->CurrentUndoState(), before);

    control.SetPipeClass(pipeClass);
    EXPECT_EQ(control.workset(), workset);
    world.tracer().clear();
    control.ActivateRollbackState(nullptr);
    EXPECT_THAT(world.trace("ActivateRollbackState"),
                ElementsAre("enter", "setting gWorkset.CurrentUndoState to m_PipeSpecUndoState", "leave"));
    EXPECT_EQ(workset->CurrentUndoState(), designers);
    // Already current: nothing set.
    world.tracer().clear();
    control.ActivateRollbackState(nullptr);
    EXPECT_THAT(world.trace("ActivateRollbackState"), ElementsAre("enter", "leave"));

    // A control with a workset but never given a state leaves the current one.
    Control other(log);
    other.SetPipeClass(pipeClass);
    workset->SetCurrentUndoState(before);
    world.tracer().clear();
    other.ActivateRollbackState(nullptr);
    EXPECT_THAT(world.trace("ActivateRollbackState"), ElementsAre("enter", "leave"));
    EXPECT_EQ(workset->CurrentUndoState(), before);
    EXPECT_EQ(world.reported(), "");
}

TEST_F(FrameTest, HostCallsInTheirOrder)
{
    {
        Control control(log);
        EXPECT_EQ(control.Version(), 1);
        // The host object is made once and kept.
        auto& host = control.WPFControl();
        EXPECT_EQ(&control.WPFControl(), &host);
        EXPECT_EQ(host.registeredCount(), 2U);
        control.setGeometry(10, 20, 300, 200);
        control.UpdateLayout();
        EXPECT_EQ(host.placement(), QRect(10, 20, 300, 200));
        EXPECT_EQ(control.TabBackGround(), 4);

        // A pipe class refreshes; an empty one neither refreshes nor forgets the workset.
        control.SetPipeClass(pipeClass);
        control.SetPipeClass(nullptr);
        EXPECT_EQ(control.PipeClass(), nullptr);
        EXPECT_EQ(control.workset(), world.workset());
        control.SetPipeClass(pipeClass);
        // Shutdown is the host's step before destruction; members stay.
        control.Shutdown();
        EXPECT_TRUE(control.isShutDown());
        EXPECT_EQ(control.PipeClass(), pipeClass);
    }
    EXPECT_THAT(log, ElementsAre("Refresh", "Refresh", "Shutdown", "destroyed"));
    EXPECT_EQ(world.reported(), "");
}

TEST_F(FrameTest, FailingHandlerReportsAndTheControlStaysInUse)
{
    Control control(log);
    control.show();
    control.failNextClick = true;
    QTest::mouseClick(control.button, Qt::LeftButton);
    ASSERT_EQ(world.host().errors().size(), 1U);
    EXPECT_EQ(world.host().errors()[0],
              (diagnostics::ErrorReport{err::InvalidCall, "the click failed", "QuorlPipeSpecComp.PipeSpecNDRange",
                                        "Sub cmdGo_Click"}));
    QTest::mouseClick(control.button, Qt::LeftButton);
    EXPECT_THAT(log, ElementsAre("click", "click"));
    EXPECT_EQ(world.host().errors().size(), 1U);
}

TEST_F(FrameTest, F1OpensTheHelpPageOfTheControlsClass)
{
    Control control(log, cls::FrmPCOMRange);
    control.show();
    // From a child that has no use for F1, too.
    control.button->setFocus();
    QTest::keyClick(control.button, Qt::Key_F1);
    auto* help = control.findChild<QDialog*>("help:FrmPCOMRange");
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->isVisible());
    EXPECT_THAT(help->findChild<QTextBrowser*>()->toPlainText().toStdString(), HasSubstr("Range for"));
    // Asked again: the same window.
    QTest::keyClick(&control, Qt::Key_F1);
    EXPECT_EQ(control.findChildren<QDialog*>().size(), 1);
    EXPECT_THAT(world.host().errors(), IsEmpty());
}

}  // namespace
}  // namespace pipespec::testing
