// The object tree: children read on expand, the holder's filter, rows that
// follow the database's changes, the selection event and drags out.

#include "qtplatform/ObjectTreeView.h"
#include "qtplatform/PictureByObject.h"
#include "support/World.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <gmock/gmock.h>

namespace pipespec::testing {
namespace {

using qtplatform::ObjectTreeView;
using ::testing::ElementsAre;

class ObjectTreeViewTest : public ::testing::Test {
protected:
    ObjectTreeViewTest()
    {
        tree.resize(400, 300);
        tree.setRoots({classes}, world.workset());
        tree.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&tree));
    }

    // The names under a shown object, as the tree has them now.
    std::vector<std::string> rowsUnder(const ObjectRef& object) const
    {
        const auto& model = *tree.model();
        QModelIndex at;
        if (object) at = indexOf(object);
        std::vector<std::string> names;
        for (int row = 0; row < model.rowCount(at); ++row)
            names.push_back(model.index(row, 0, at).data().toString().toStdString());
        return names;
    }
    QModelIndex indexOf(const ObjectRef& object) const
    {
        const auto& model = *tree.model();
        const auto hits = model.match(model.index(0, 0), Qt::DisplayRole, QString::fromStdString(object->Name()), 1,
                                      Qt::MatchRecursive | Qt::MatchExactly);
        return hits.value(0);
    }

    support::World world;
    DeviceRef classes = world.path(world.plant(), "@20|CLASSES");
    DeviceRef pipeClass = world.pipeClass(classes, "PC1", "10000");
    DeviceRef flange = world.device(pipeClass, "FLANGE", {{"GD.VFCD", "10100"}});
    DeviceRef gasket = world.device(pipeClass, "GASKET", {{"GD.VFCD", "10300"}});
    ObjectTreeView tree;
};

TEST_F(ObjectTreeViewTest, ReadsChildrenOnExpandAndFollowsTheDatabase)
{
    // Lazy: the pipe class is there with its expand mark, its elements not yet.
    EXPECT_THAT(rowsUnder(nullptr), ElementsAre("CLASSES"));
    tree.expand(tree.model()->index(0, 0));
    EXPECT_THAT(rowsUnder(classes), ElementsAre("PC1"));
    const auto pc = indexOf(pipeClass);
    EXPECT_TRUE(tree.model()->hasChildren(pc));
    EXPECT_EQ(tree.model()->rowCount(pc), 0) << "not read before it is expanded";
    EXPECT_EQ(qtplatform::kindOfObject(pipeClass), qtplatform::ObjectKind::PipeClass);

    // The holder's filter decides as the children are read.
    std::vector<std::string> asked;
    tree.setBeforeExpand([&](const ObjectRef&, const ObjectRef& child) {
        asked.push_back(child->Name());
        return child != gasket;
    });
    tree.expand(pc);
    EXPECT_THAT(asked, ElementsAre("FLANGE", "GASKET"));
    EXPECT_THAT(rowsUnder(pipeClass), ElementsAre("FLANGE"));

    // Changes arrive as rows inserted, removed and changed, never as a reset.
    QSignalSpy resets(tree.model(), &QAbstractItemModel::modelReset);
    QSignalSpy inserted(tree.model(), &QAbstractItemModel::rowsInserted);
    DeviceRef valve;
    {
        ActionScope action(*world.workset());
        valve = world.device(pipeClass, "VALVE", {{"GD.VFCD", "10500"}});
        flange->SetName("FLANGE-WN");
    }
    EXPECT_THAT(rowsUnder(pipeClass), ElementsAre("FLANGE-WN", "VALVE"));
    valve->Delete();
    EXPECT_THAT(rowsUnder(pipeClass), ElementsAre("FLANGE-WN"));
    EXPECT_EQ(resets.count(), 0);
    EXPECT_EQ(inserted.count(), 1);
}

TEST_F(ObjectTreeViewTest, RevealsSelectsAndDragsOut)
{
    std::vector<ObjectRef> current;
    QObject::connect(&tree, &ObjectTreeView::currentObjectChanged,
                     [&](const ObjectRef& object) { current.push_back(object); });
    // Reveal reads the nodes on the way down and selects.
    ASSERT_TRUE(tree.reveal(gasket));
    EXPECT_EQ(tree.currentObject(), gasket);
    EXPECT_THAT(current, ElementsAre(gasket));
    EXPECT_FALSE(tree.reveal(world.catalog())) << "not below a root of this tree";

    // A drag out: the workset carries the selected objects.
    const auto at = tree.viewport()->mapTo(&tree, tree.visualRect(tree.currentIndex()).center());
    QTest::mousePress(tree.windowHandle(), Qt::LeftButton, {}, at);
    QTest::mouseMove(tree.windowHandle(), at + QPoint(2, 0));
    QTest::mouseMove(tree.windowHandle(), at + QPoint(QApplication::startDragDistance() + 20, 0));
    QTest::mouseRelease(tree.windowHandle(), Qt::LeftButton, {}, at);
    const auto carried = world.workset()->DragObject().collection();
    ASSERT_TRUE(carried);
    ASSERT_EQ(carried->Count(), 1);
    EXPECT_EQ(carried->Item(1), gasket);

    // The filter shows matches with the nodes above them, read or not.
    tree.setNameFilter("flange");
    EXPECT_THAT(rowsUnder(pipeClass), ElementsAre("FLANGE"));
    tree.setNameFilter("");
    EXPECT_THAT(rowsUnder(pipeClass), ElementsAre("FLANGE", "GASKET"));
}

}  // namespace
}  // namespace pipespec::testing
