// The Qt grid, driven through its window as a user drives it: the events it
// raises, and what the query and the database show afterwards.

#include "qtplatform/QtGrid.h"
#include "platform/query/QueryFixture.h"
#include "qtplatform/GridMenu.h"
#include "qtplatform/ObjectDrag.h"

#include <QGuiApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include <gmock/gmock.h>

#include <functional>

namespace pipespec::testing {
namespace {

using qtplatform::QtGrid;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// The keys that reach the widget holding the grid.
class KeysHeard final : public QObject {
public:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::KeyPress) keys.push_back(static_cast<QKeyEvent*>(event)->key());
        return false;
    }
    std::vector<int> keys;
};

// What the grid shows, in one line: the heads of the shown columns, then
// each row; a check box reads "[x]" or "[ ]".
std::string gridText(const QtGrid& grid)
{
    const auto& model = grid.tableModel();
    const auto cell = [&](int row, int section) {
        const auto index = model.index(row, section);
        const auto check = index.data(Qt::CheckStateRole);
        if (check.isValid()) return std::string(check.toInt() == Qt::Checked ? "[x]" : "[ ]");
        return index.data().toString().toStdString();
    };
    std::string text;
    const auto line = [&](const std::function<std::string(int)>& item) {
        std::string joined;
        for (int section = 0; section < model.columnCount(); ++section)
            if (!grid.isColumnHidden(section)) joined += (joined.empty() ? "" : "|") + item(section);
        text += (text.empty() ? "" : "; ") + joined;
    };
    line([&](int section) {
        return model.headerData(section, Qt::Horizontal, Qt::DisplayRole).toString().toStdString();
    });
    for (int row = 0; row < model.rowCount(); ++row) line([&](int section) { return cell(row, section); });
    return text;
}

// The entries of an open menu: text, "(off)" when disabled, "*" with an
// icon, a sub-menu's entries in brackets.
std::string described(const QMenu& menu)
{
    std::string text;
    for (const auto* action : menu.actions()) {
        text += text.empty() ? "" : ",";
        if (action->isSeparator()) {
            text += "-";
            continue;
        }
        text +=
            action->text().toStdString() + (action->isEnabled() ? "" : "(off)") + (action->icon().isNull() ? "" : "*");
        if (action->menu()) text += "[" + described(*action->menu()) + "]";
    }
    return text;
}

class QtGridTest : public QueryFixture {
protected:
    QtGridTest()
    {
        column("Name", valuekind::Name)->SetEditable(true);
        query->Top()->Columns()->Item("Name")->SetObjectColumn(true);
        column("Description", valuekind::Description)->SetEditable(true);
        const auto code = column("FunctionCode", valuekind::Value, sourcekind::Attribute, "GD.VFCD");
        code->SetSortable(false);
        code->SetVisible(false);
        const auto lower = column("Lower", valuekind::RangeBound, sourcekind::Attribute, "RANGE.DN");
        lower->SetValueParameter("0");
        lower->SetNumeric(true);
        lower->SetEditable(true);
        column("Nothing", valuekind::None)->SetWidth(0);
        const auto branch = column("BranchComponents", valuekind::None);
        branch->SetExtendedKind(extendedkind::CheckBox);
        branch->SetEditable(true);
        for (const auto& [key, title] : {std::pair{"Name", "~00077 Name"},
                                         {"Description", "Text"},
                                         {"Lower", "DN"},
                                         {"BranchComponents", "Branch"}})
            query->Top()->Columns()->Item(key)->SetTitle(title);
        served->values["BranchComponents"] = false;
        served->values["BranchComponents/E1"] = true;
        query->Top()->RegisterExtended("QuorlPipeSpecComp.PipeSpecComp", served);
        query->Top()->SetObjects(rows({e2, e1, e3}));
        query->Refresh();

        window.resize(720, 240);
        window.installEventFilter(&parentHeard);
        (new QVBoxLayout(&window))->addWidget(grid);  // Owned by the window.
        grid->SetQuery(query);
        grid->SetEventSink(sink);
        grid->setWorkset(world.workset());
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        sink->take();
    }

    // Mouse actions go through the window, as the platform delivers them.
    void mouse(QWidget& widget, const QPoint& at, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::mouseClick(window.windowHandle(), button, modifiers, widget.mapTo(&window, at));
    }
    QPoint cellAt(int row, const char* key) const
    {
        const auto index =
            grid->tableModel().index(row, grid->tableModel().sectionOf(query->Top()->Columns()->Item(key)));
        return grid->visualRect(index).center();
    }
    void clickCell(int row, const char* key, Qt::KeyboardModifiers modifiers = {}) const
    {
        mouse(*grid->viewport(), cellAt(row, key), Qt::LeftButton, modifiers);
    }
    QPoint headAt(const char* key) const
    {
        const auto* head = grid->horizontalHeader();
        const int section = grid->tableModel().sectionOf(query->Top()->Columns()->Item(key));
        return {head->sectionViewportPosition(section) + head->sectionSize(section) / 2, head->height() / 2};
    }
    QWidget& heads() const { return *grid->horizontalHeader()->viewport(); }

    // Runs `act` on the menu that opens next, while it is open.
    static void whenMenuOpens(std::function<void(QMenu&)> act)
    {
        QTimer::singleShot(0, [act = std::move(act)] {
            if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) act(*menu);
        });
    }
    // Chooses with the keyboard, along sub-menus: keys as the sink gave them.
    static void choose(QMenu& menu, std::vector<std::string> path)
    {
        for (auto* action : menu.actions()) {
            if (qtplatform::menuKey(*action) != path.front()) continue;
            menu.setActiveAction(action);
            if (path.size() == 1) return QTest::keyClick(&menu, Qt::Key_Return);
            QTest::keyClick(&menu, Qt::Key_Right);
            path.erase(path.begin());
            return choose(*action->menu(), path);
        }
        FAIL() << "no entry " << path.front();
    }
    // Types into the editor that is open and confirms.
    void type(const QString& text) const
    {
        auto* editor = grid->viewport()->findChild<QLineEdit*>();
        ASSERT_NE(editor, nullptr) << "no editor is open";
        editor->selectAll();
        QTest::keyClicks(editor, text);
        QTest::keyClick(editor, Qt::Key_Return);
        // The editor commits and closes queued, and is deleted later.
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    std::vector<std::string> selectedNames() const
    {
        std::vector<std::string> names;
        const auto selected = grid->SelectedObjects();
        for (int i = 1; i <= selected->Count(); ++i) names.push_back(selected->Item(i)->Name());
        return names;
    }

    std::shared_ptr<ServedCells> served = std::make_shared<ServedCells>();
    std::shared_ptr<RecordingSink> sink = std::make_shared<RecordingSink>();
    QWidget window;
    KeysHeard parentHeard;
    QtGrid* grid = new QtGrid("QGrid");  // Owned by the window once laid out.
};

TEST_F(QtGridTest, ShowsTheQueryAndFollowsClicksKeysAndHeads)
{
    EXPECT_EQ(gridText(*grid), "Name|Text|DN|Branch; E2|Element E2|15|[ ]; E1|Element E1|15|[x]; E3|Element E3|15|[ ]")
        << "titles translated; the invisible and the zero-width column take no room";
    EXPECT_EQ(grid->columnWidth(0), 4 * grid->pixelsPerUnit()) << "a column's own width, in units";

    clickCell(1, "Name");
    EXPECT_EQ(grid->CurrentObject(), e1);
    EXPECT_EQ(grid->CurrentColumn()->Key(), "Name");
    EXPECT_EQ(grid->CurrentSpecification(), nullptr) << "a name is no attribute";
    clickCell(0, "Lower");
    EXPECT_EQ(grid->CurrentSpecification(), e2->Spec("RANGE.DN"));
    clickCell(2, "Lower", Qt::ControlModifier);
    EXPECT_THAT(selectedNames(), ElementsAre("E2", "E3")) << "in row order";
    QTest::keyClick(grid, Qt::Key_Up);
    EXPECT_EQ(grid->CurrentObject(), e1);
    EXPECT_THAT(sink->take(), ElementsAre("Change", "Change", "Change", "Change")) << "one Change per click or key";

    // A head click sorts a sortable column through the query, the selection stays with its objects.
    mouse(heads(), headAt("Name"));
    EXPECT_THAT(gridText(*grid), HasSubstr("; E1|Element E1|15|[x]; E2|Element E2|15|[ ]; E3|"));
    mouse(heads(), headAt("Name"));
    EXPECT_THAT(gridText(*grid), HasSubstr("; E3|Element E3|15|[ ]; E2|Element E2|15|[ ]; E1|"));
    EXPECT_EQ(grid->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
    EXPECT_EQ(grid->CurrentObject(), e1);
    mouse(heads(), headAt("Lower"));
    EXPECT_EQ(query->Sorts()->Item(0)->Column()->Key(), "Lower");
    EXPECT_EQ(grid->CurrentColumn()->Key(), "Lower");
    EXPECT_THAT(sink->take(), ElementsAre("HeadClick Name", "HeadClick Name", "HeadClick Lower"));

    // Help and other keys the grid has no use for go to the control holding it.
    QTest::keyClick(grid, Qt::Key_F1);
    EXPECT_THAT(parentHeard.keys, ElementsAre(Qt::Key_F1));
    EXPECT_THAT(sink->take(), IsEmpty());

    // Redraw paints the database anew; Refresh shows the rows of the query's last Refresh.
    QSignalSpy repainted(&grid->tableModel(), &QAbstractItemModel::dataChanged);
    e1->SetDescription("Changed");
    grid->Redraw();
    EXPECT_EQ(repainted.count(), 1);
    EXPECT_THAT(gridText(*grid), HasSubstr("E1|Changed|"));
    query->Top()->SetObjects(rows({e2, e3}));
    query->Refresh();
    grid->Refresh();
    EXPECT_EQ(grid->CurrentObject(), nullptr) << "its row is gone";
    EXPECT_EQ(grid->tableModel().rowCount(), 2);
    grid->ShutDown();
    EXPECT_EQ(grid->Query(), nullptr);
    EXPECT_EQ(grid->tableModel().rowCount(), 0);
}

TEST_F(QtGridTest, MenusAreBuiltFromTheSinksEntriesAndRunTheChosenOne)
{
    sink->fillMenu = RecordingSink::fillSolveMenu;
    std::string seen;
    ObjectRef selectedAtPopUp;
    sink->heard = [&](const std::string& event) {
        if (event == "PopUp") selectedAtPopUp = grid->SelectedObjects()->Item(1);
    };
    whenMenuOpens([&](QMenu& menu) {
        seen = described(menu);
        choose(menu, {">Solve", "Solve|SolveTemplate"});
    });
    mouse(*grid->viewport(), cellAt(1, "Description"), Qt::RightButton);
    EXPECT_EQ(seen, "-,Aktualisieren,Solve template pipe spec[ohne Ablaufverfolgung],Einfügen(off)*");
    EXPECT_EQ(selectedAtPopUp, e1) << "the right click selected its row first";
    EXPECT_THAT(sink->take(), ElementsAre("Change", "BeforeCreateStdPopUp", "PopUp", "PopUpSubMenu >Solve",
                                          "PopUpCmd Solve|SolveTemplate"));

    // A disabled entry runs nothing; the menu closes without a command.
    whenMenuOpens([](QMenu& menu) {
        choose(menu, {"Paste"});
        QTest::keyClick(&menu, Qt::Key_Escape);
    });
    mouse(*grid->viewport(), cellAt(1, "Description"), Qt::RightButton);
    EXPECT_THAT(sink->take(), ElementsAre("BeforeCreateStdPopUp", "PopUp"));

    // The head menu tells its column.
    sink->fillMenu = [](IPopUpMenu& menu) {
        menu.Add(">Selector", "~03168 Selector");
        menu.Add("Selector|NewSelector", "~03483 New");
    };
    whenMenuOpens([](QMenu& menu) { choose(menu, {">Selector", "Selector|NewSelector"}); });
    mouse(heads(), headAt("Description"), Qt::RightButton);
    EXPECT_THAT(sink->take(), ElementsAre("TitlePopUp Description", "TitlePopUpSubMenu >Selector Description",
                                          "TitlePopUpCmd Selector|NewSelector Description"));
}

TEST_F(QtGridTest, EditsGoThroughTheQueryAndABadNumberWritesNothing)
{
    clickCell(1, "Description");
    QTest::keyClick(grid, Qt::Key_F2);
    type("new text");
    EXPECT_EQ(e1->Description(), "new text");
    EXPECT_THAT(gridText(*grid), HasSubstr("E1|new text|"));

    sink->refuse = true;
    QTest::keyClick(grid, Qt::Key_F2);
    EXPECT_EQ(grid->viewport()->findChild<QLineEdit*>(), nullptr) << "the sink cancelled: no editor opens";
    sink->refuse = false;

    const auto range = e1->Spec("RANGE.DN");
    clickCell(1, "Lower");
    QTest::keyClick(grid, Qt::Key_F2);
    type("abc");
    EXPECT_EQ(range->GetXValue(0), "15");
    ASSERT_EQ(world.host().messageBoxes().size(), 1U);
    EXPECT_EQ(world.host().messageBoxes()[0].text, "'abc' is not a number. The cell keeps its value.");
    EXPECT_EQ(world.host().messageBoxes()[0].title, "DN");
    QTest::keyClick(grid, Qt::Key_F2);
    type("20");
    EXPECT_EQ(range->GetXValue(0), "20");

    // A check box takes a click or Space at once, asking first.
    clickCell(0, "BranchComponents");
    QTest::keyClick(grid, Qt::Key_Space);
    EXPECT_THAT(served->written, ElementsAre("E2/BranchComponents=True"));
    EXPECT_THAT(sink->take(), ElementsAre("Change", "BeforeCellEdit E1 Description", "AfterCellEdit E1 Description",
                                          "BeforeCellEdit E1 Description", "Change", "BeforeCellEdit E1 Lower",
                                          "BeforeCellEdit E1 Lower", "AfterCellEdit E1 Lower", "Change",
                                          "BeforeCellEdit E2 BranchComponents", "AfterCellEdit E2 BranchComponents"));
}

TEST_F(QtGridTest, ColumnsMoveByTheirHeadsDeleteUnlessRefusedAndKeepTheirLayout)
{
    // Dragging the head of "Name" past the middle of "Lower": the query's columns move.
    grid->setColumnWidth(0, 150);
    Qt::MouseButtons buttonsAtChange = Qt::LeftButton;
    sink->heard = [&](const std::string& event) {
        if (event == "ColumnsChanged") buttonsAtChange = QGuiApplication::mouseButtons();
    };
    auto* platformWindow = window.windowHandle();
    const auto from = heads().mapTo(&window, headAt("Name"));
    const auto to = heads().mapTo(&window, headAt("Lower") + QPoint(10, 0));
    QTest::mousePress(platformWindow, Qt::LeftButton, {}, from);
    QTest::mouseMove(platformWindow, from + QPoint(20, 0));
    QTest::mouseMove(platformWindow, to);
    QTest::mouseRelease(platformWindow, Qt::LeftButton, {}, to);
    EXPECT_THAT(sink->take(), ElementsAre("ColumnsChanged"));
    EXPECT_EQ(buttonsAtChange, Qt::NoButton) << "the sink reads the button up";
    EXPECT_EQ(query->Top()->Columns()->Item(4)->Key(), "Name") << "behind the hidden FunctionCode and Lower";
    EXPECT_THAT(gridText(*grid), ::testing::StartsWith("Text|DN|Name|Branch; Element E2|15|E2|[ ]"));
    EXPECT_EQ(grid->columnWidth(grid->tableModel().sectionOf(query->Top()->Columns()->Item("Name"))), 150)
        << "the moved column keeps the width the user gave it";

    // The layout goes into settings and comes back on another grid.
    const auto node = std::make_shared<ObjectSetNode>();
    grid->saveSettings(*node);
    QtGrid other("QGrid");
    other.Settings()->Load(node);
    const auto copy = query->Copy();
    int placedAt = 0;
    copy->Top()->Columns()->Insert(copy->Top()->Columns()->Remove("Name"), 1, placedAt);
    other.SetQuery(copy);
    EXPECT_EQ(gridText(other), "Text|DN|Name|Branch") << "placed as stored; the copy has no rows before its Refresh";
    EXPECT_EQ(other.columnWidth(other.tableModel().sectionOf(other.Query()->Top()->Columns()->Item("Name"))),
              grid->pixelsPerUnit() * ((150 + grid->pixelsPerUnit() / 2) / grid->pixelsPerUnit()))
        << "widths are stored in whole units";

    // Ctrl+Delete deletes the current column where deletion is on, unless the sink cancels.
    clickCell(0, "Description");
    sink->take();
    QTest::keyClick(grid, Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_THAT(sink->take(), IsEmpty()) << "deletion is off";
    grid->setColumnsDeletable(true);
    sink->refuse = true;
    QTest::keyClick(grid, Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_TRUE(query->Top()->Columns()->Item("Description"));
    sink->refuse = false;
    QTest::keyClick(grid, Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(query->Top()->Columns()->Item("Description"), nullptr);
    EXPECT_EQ(grid->CurrentColumn(), nullptr);
    EXPECT_THAT(gridText(*grid), ::testing::StartsWith("DN|Name|Branch; 15|E2|[ ]"));
    EXPECT_THAT(selectedNames(), ElementsAre("E2")) << "the row stays selected";
    EXPECT_THAT(sink->take(), ElementsAre("BeforeColumnsDelete Description", "BeforeColumnsDelete Description",
                                          "AfterColumnsDelete"));
}

TEST_F(QtGridTest, DragsCarryTheWorksetsDragObject)
{
    // Out: the selected rows, which the workset then carries.
    const auto from = grid->viewport()->mapTo(&window, cellAt(2, "Description"));
    QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, from);
    QTest::mouseMove(window.windowHandle(), from + QPoint(0, -2));
    QTest::mouseMove(window.windowHandle(), from + QPoint(0, -QApplication::startDragDistance() - 20));
    QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, from);
    const auto carried = world.workset()->DragObject().collection();
    ASSERT_TRUE(carried);
    ASSERT_EQ(carried->Count(), 1);
    EXPECT_EQ(carried->Item(1), e3);
    EXPECT_THAT(sink->take(), ElementsAre("Change", "OLEStartDrag 1", "OLECompleteDrag 0"));

    // In: objects of this process, over the rows and over a head; the sink's answer is the drop's.
    world.workset()->setDragObject(Variant(tee));
    QMimeData objects;
    objects.setData(qtplatform::kObjectsMimeType, {});
    const auto dragTo = [&](QWidget& target, const QPoint& at, const QMimeData& data) {
        QDragEnterEvent enter(at, Qt::CopyAction | Qt::LinkAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&target, &enter);
        QDropEvent dropped(at, Qt::CopyAction | Qt::LinkAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&target, &dropped);
        return dropped.isAccepted() ? dropped.dropAction() : Qt::IgnoreAction;
    };
    sink->dragEffect = dropeffect::Link;
    EXPECT_EQ(dragTo(*grid->viewport(), cellAt(0, "Name"), objects), Qt::LinkAction);
    EXPECT_EQ(sink->dropped, Variant(tee));
    sink->dragEffect = dropeffect::None;
    EXPECT_EQ(dragTo(heads(), headAt("Lower"), objects), Qt::IgnoreAction);

    QMimeData text;
    text.setText("E1");
    EXPECT_EQ(dragTo(*grid->viewport(), cellAt(0, "Name"), text), Qt::IgnoreAction)
        << "not ours: the sink hears nothing";
    EXPECT_THAT(sink->take(),
                ElementsAre("OLEDragOver", "OLEDragDrop 4", "OLETitleDragOver Lower", "OLETitleDragDrop 0 Lower"));
}

}  // namespace
}  // namespace pipespec::testing
