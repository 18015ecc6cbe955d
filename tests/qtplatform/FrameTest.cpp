// The frame every control stands on, driven as the host and a user drive a
// control: the host's calls in their order, a click, a key, a language switch.

#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "frame/ControlFrame.h"
#include "qtplatform/ObjectDrag.h"
#include "qtplatform/ObjectPickField.h"
#include "qtplatform/OkAbortBar.h"
#include "qtplatform/QtHost.h"
#include "ranges/frmPCOMRange.h"
#include "support/World.h"

#include <QApplication>
#include <QDialog>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <functional>
#include <tuple>

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

// The windowed host installed over the world's headless one.
class QtHostTest : public FrameTest {
protected:
    QWidget mainWindow;
    std::shared_ptr<qtplatform::QtUtilities> qtHost = std::make_shared<qtplatform::QtUtilities>(&mainWindow);
    diagnostics::ScopedService<IUtilities> installed{diagnostics::setUtilities, qtHost};

    // Runs `act` on the modal window that opens next, while it is open.
    static void whenModalOpens(std::function<void(QWidget&)> act)
    {
        QTimer::singleShot(0, [act = std::move(act)] {
            if (auto* modal = QApplication::activeModalWidget()) act(*modal);
        });
    }
};

TEST_F(QtHostTest, FormsAndBoxesAnswerAsTheUserDoes)
{
    // OK and abort each raise their own event, then ClickClose; a disabled OK nothing.
    ranges::frmPCOMRange form;
    auto& bar = *form.findChild<qtplatform::OkAbortBar*>();
    QSignalSpy ok(&bar, &qtplatform::OkAbortBar::ClickOk), abort(&bar, &qtplatform::OkAbortBar::ClickAbort),
        closed(&bar, &qtplatform::OkAbortBar::ClickClose);
    const auto showAndThen = [&](std::function<void(QWidget&)> act) {
        whenModalOpens(std::move(act));
        qtHost->MainWindow()->WindowService()->ShowForm(form);
        return form.isVisible();
    };
    EXPECT_FALSE(
        showAndThen([](QWidget& modal) { QTest::mouseClick(modal.findChild<QPushButton*>("ok"), Qt::LeftButton); }));
    EXPECT_EQ(std::tuple(ok.count(), abort.count(), closed.count()), std::tuple(1, 0, 1));
    // Escape closes as the bar does.
    EXPECT_FALSE(showAndThen([](QWidget& modal) { QTest::keyClick(&modal, Qt::Key_Escape); }));
    bar.setOkEnabled(false);
    EXPECT_FALSE(showAndThen([](QWidget& modal) {
        QTest::mouseClick(modal.findChild<QPushButton*>("ok"), Qt::LeftButton);
        QTest::mouseClick(modal.findChild<QPushButton*>("abort"), Qt::LeftButton);
    }));
    EXPECT_EQ(std::tuple(ok.count(), abort.count(), closed.count()), std::tuple(1, 1, 2));

    // A yes/no box answers with the button pressed.
    const auto press = [](QMessageBox::StandardButton button) {
        whenModalOpens([button](QWidget& modal) {
            auto& box = dynamic_cast<QMessageBox&>(modal);
            EXPECT_EQ(box.windowTitle(), "Tubrix Designer");
            box.button(button)->click();
        });
    };
    press(QMessageBox::No);
    EXPECT_EQ(qtHost->MessageBox("Delete?", mb::YesNoExclamation, "Tubrix Designer"), mb::AnswerNo);
    press(QMessageBox::Ok);
    EXPECT_EQ(qtHost->MessageBox("Done", mb::Information, "Tubrix Designer"), mb::AnswerOk);
    EXPECT_THAT(qtHost->kept().errors(), IsEmpty());
}

TEST_F(QtHostTest, LanguageSwitchesWhileTheControlsAreShown)
{
    Control control(log);
    qtplatform::OkAbortBar bar;
    EXPECT_EQ(control.label->text(), "Nennweiten-Bereich");
    qtHost->switchLanguage("en");
    EXPECT_EQ(control.label->text(), "Nominal-diameter range");
    EXPECT_EQ(bar.abortButton()->text(), "Cancel");
    qtHost->kept().setLanguage(diagnostics::LanguageTable::parse(R"({"035bb": "Bereich für "})", "test"));
    ranges::frmPCOMRange form;
    form.Init(world.device(pipeClass, "001"));
    EXPECT_EQ(form.windowTitle(), "Bereich für  PC1|001 - ");
    qtHost->switchLanguage("de");
    EXPECT_EQ(control.label->text(), "Nennweiten-Bereich");
    EXPECT_EQ(form.windowTitle(), "Range for  PC1|001 - ");
    EXPECT_THROW(qtHost->switchLanguage("xx"), PlatformError);
    EXPECT_EQ(qtHost->language(), "de");
}

TEST_F(FrameTest, PickFieldTakesTheDraggedObjectUnlessLocked)
{
    const auto catalog = world.catalog();
    const auto first = world.device(catalog, "Flange");
    const auto second = world.device(catalog, "Tee");
    qtplatform::ObjectPickField field;
    field.setProject(world.plant());
    field.setPickListName("OPLNewSelector");
    field.setIconProvider([](const ObjectRef&) {
        QPixmap square(16, 16);
        square.fill(Qt::blue);
        return QIcon(square);
    });
    field.setObject(first);
    field.Refresh();
    EXPECT_EQ(field.shownText(), "Flange");
    EXPECT_TRUE(field.showsIcon());

    QSignalSpy changed(&field, &qtplatform::ObjectPickField::Change);
    QMimeData objects;
    objects.setData(qtplatform::kObjectsMimeType, {});
    const auto drop = [&](const QMimeData& data) {
        QDragEnterEvent enter({4, 4}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&field, &enter);
        QDropEvent dropped({4, 4}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&field, &dropped);
        return enter.isAccepted() && dropped.isAccepted();
    };
    world.workset()->setDragObject(Variant(second));
    field.setLocked(true);
    EXPECT_FALSE(drop(objects));
    QMimeData text;
    text.setText("Tee");
    field.setLocked(false);
    EXPECT_FALSE(drop(text)) << "not ours";
    EXPECT_EQ(field.object(), first);
    EXPECT_TRUE(drop(objects));
    EXPECT_EQ(field.object(), second);
    EXPECT_EQ(field.shownText(), "Tee");
    EXPECT_EQ(changed.count(), 1);
    // The owner's filter refuses.
    field.setDropFilter([](const Variant& dragged) { return dragged.objectAs<ISpecification>() != nullptr; });
    world.workset()->setDragObject(Variant(first));
    EXPECT_FALSE(drop(objects));
    EXPECT_EQ(field.object(), second);
    EXPECT_EQ(world.reported(), "");
}

TEST_F(QtHostTest, RangeFormEditsTheRangeCreationMade)
{
    world.list(pipeClass, "NR.DNLIST", {"15", "25", "50", "80", "100"});
    const auto element = world.device(pipeClass, "001", {{"NR.DNFROM", "25"}, {"NR.DNTO", "80"}});
    ranges::frmPCOMRange form;
    // The form's range control prepares a range as element creation does.
    form.InitNDRange(element, pipeClass);
    EXPECT_EQ(world.listed(element, "NR.DNLIST"), "25 50 80");

    // Without a description the caption still ends with " - ".
    form.Init(element);
    EXPECT_EQ(form.windowTitle(), "Range for  PC1|001 - ");
    auto& row = form.rangeRow();
    const auto pressed = [&] {
        std::string shown;
        for (const auto* diameter : {"15", "25", "50", "80", "100"})
            shown += row.cell(diameter)->isChecked() ? std::string(diameter) + " " : "";
        return shown;
    };
    EXPECT_EQ(pressed(), "25 50 80 ");
    EXPECT_GE(form.width(), row.width() + ranges::frmPCOMRange::kBarStrip);

    // A click sets the lower bound, a right click the upper; the form tells the list.
    QSignalSpy changed(&form, &ranges::frmPCOMRange::PCOMRange_Changed);
    std::vector<QStringList> told;
    QObject::connect(&row, &qtplatform::PCOMRange::RangeChanged,
                     [&](int, const qtplatform::RangeData& data) { told.push_back(data.diameters); });
    const auto undo = world.workset()->NewUndoState();
    world.workset()->SetCurrentUndoState(undo);
    form.show();
    QTest::mouseClick(row.cell("15"), Qt::LeftButton);
    QTest::mouseClick(row.cell("50"), Qt::RightButton);
    EXPECT_EQ(pressed(), "15 25 50 ");
    EXPECT_EQ(world.value(element, "NR.DNFROM"), "15");
    EXPECT_EQ(world.value(element, "NR.DNTO"), "50");
    EXPECT_EQ(changed.count(), 2);
    EXPECT_THAT(told, ElementsAre(QStringList{"15", "25", "50", "80"}, QStringList{"15", "25", "50"}));
    // Each click is one step back.
    undo->Undo();
    EXPECT_EQ(pressed(), "15 25 50 ") << "shown until reloaded";
    row.Reload();
    EXPECT_EQ(pressed(), "15 25 50 80 ");

    // A failing handler reports under the form's class string; the form stays.
    form.Init(nullptr);
    ASSERT_EQ(qtHost->kept().errors().size(), 1U);
    EXPECT_EQ(qtHost->kept().errors()[0].cls, "QuorlPipeSpecComp.FrmPCOMRange");
    EXPECT_EQ(qtHost->kept().errors()[0].function, "Sub Init");
    EXPECT_TRUE(form.isVisible());
}

}  // namespace
}  // namespace pipespec::testing
