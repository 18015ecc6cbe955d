// Query containers: devices that carry a stored query and grid settings,
// found by path, read and written as copies.

#include "objectmodel/ExpectError.h"
#include "platform/query/HeadlessGrid.h"
#include "platform/query/Query.h"
#include "platform/query/QueryContainer.h"
#include "platform/query/QueryFixture.h"

#include <gmock/gmock.h>

namespace pipespec::testing {
namespace {

using checks::errorNumber;

constexpr std::string_view kSystemPath = "@System|@O|@PCL|PCL";
constexpr std::string_view kFallbackPath = "@20|A70|Y10|M23|A20|A10";

class QueryContainerTest : public QueryFixture {
protected:
    QueryContainerTest()
    {
        const auto code = column("FunctionCode", valuekind::Value, sourcekind::Attribute, "GD.VFCD");
        code->SetTitle("~010fd Funktionscode");
        code->SetNumeric(true);
        const auto function = column("FunctionCodeDesc", valuekind::DisplayValue);
        function->SetBaseColumn(code);
        const auto filter = query->Filters()->Add(-1);
        filter->SetColumn(code);
        filter->SetOperator(filteroperator::AtLeast);
        filter->SetValue(10200);
        query->Sorts()->Item(0)->SetColumn(code);
        query->Sorts()->Item(0)->SetDirection(sortdirection::Ascending);
    }

    // The folder of the fallback path, made in the base project.
    DeviceRef containerFolder() const
    {
        auto folder = world.root(world.base(), "@20");
        for (const auto* name : {"A70", "Y10", "M23", "A20"}) folder = world.device(folder, name);
        return folder;
    }

    static platform::QueryDefinition definitionOf(const QueryRef& stored)
    {
        return dynamic_cast<const platform::Query&>(*stored).definition();
    }
};

TEST_F(QueryContainerTest, CreatorMakesContainersWithOrWithoutAnAttachedObject)
{
    const auto creator = platform::createQueryCreator("QuorlQueryXObj.QCreator");
    const auto folder = containerFolder();
    const auto first = creator->Create(folder, 1);
    const auto second = creator->Create(folder, 0);
    EXPECT_EQ(first->Name(), "TQContainer001");
    EXPECT_EQ(second->Name(), "TQContainer002");
    EXPECT_EQ(first->Owner(), folder);

    const auto carrying = platform::queryContainerOf(first);
    ASSERT_TRUE(carrying->HasXObj());
    const auto attached = carrying->XObj();
    EXPECT_EQ(attached, carrying->XObj()) << "the same object until it is released";
    EXPECT_EQ(attached->TopQuery()->QueryOrg()->Top()->Columns()->Count(), 0) << "a new container holds an empty query";

    EXPECT_FALSE(platform::queryContainerOf(second)->HasXObj());
    EXPECT_EQ(platform::queryContainerOf(second)->XObj(), nullptr);
    EXPECT_FALSE(platform::queryContainerOf(folder)->HasXObj()) << "a device no creator made";
    EXPECT_EQ(errorNumber([&] { creator->Create(folder, 2); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([&] { creator->Create(nullptr, 1); }), err::ObjectNotSet);
}

TEST_F(QueryContainerTest, StoredQueryAndGridSettingsComeBackFromThePath)
{
    world.root(world.base(), "@System");
    const platform::PathResolver resolver(world.workset());
    const auto path = resolver.Resolve(kSystemPath, kFallbackPath);
    ASSERT_EQ(path, kSystemPath);

    // Store: the query as it is at SetQueryOrg, and a column width for the grid "QGrid".
    auto folder = world.root(world.base(), "@System");
    for (const auto* name : {"@O", "@PCL"}) folder = world.device(folder, name);
    const auto device = platform::createQueryCreator("QuorlQueryXObj.QCreator")->Create(folder, 1);
    device->SetName("PCL");
    device->SetDescription("~01125 Standardabfrage für Rohrklassen");
    const auto container = platform::queryContainerOf(device);
    const auto attached = container->XObj();
    attached->TopQuery()->SetQueryOrg(query);
    attached->ObjectSet()->child("TopQGridCDevices").child("QGrid").values["Width.FunctionCode"] = "9";
    container->Save();
    container->ReleaseXObj();
    const auto saved = definitionOf(query);
    query->Top()->Columns()->Add("AddedLater", -1);

    // Load: look the container up as a list control does.
    const auto project = world.workset()->CurrentProject();
    const auto found = asDevice(project->ObjectByFullName(project->SystemProject(), path));
    ASSERT_EQ(found, device);
    const auto loaded = platform::queryContainerOf(found);
    ASSERT_TRUE(loaded->HasXObj());
    const auto again = loaded->XObj();
    const auto stored = again->TopQuery()->QueryOrg();
    EXPECT_EQ(definitionOf(stored), saved);
    EXPECT_NE(stored, again->TopQuery()->QueryOrg()) << "each read is a copy";
    stored->Top()->Columns()->Clear();
    EXPECT_EQ(definitionOf(again->TopQuery()->QueryOrg()), saved);

    // The stored query works on rows like any other.
    const auto working = again->TopQuery()->QueryOrg();
    working->Top()->SetObjects(rows({e1, e2, e3}));
    working->Refresh();
    ASSERT_EQ(working->RowCount(), 2);
    EXPECT_EQ(working->RowObject(1), e3);
    EXPECT_EQ(working->CellText(1, working->Top()->Columns()->Item("FunctionCodeDesc")), "Blind flange");

    platform::HeadlessGrid grid("QGrid");
    grid.SetQuery(working);
    auto node = platform::FindObject(again->ObjectSet(), "TopQGridCDevices", "", 0);
    ASSERT_TRUE(node);
    node = platform::FindObject(node, grid.Settings()->Name(), "", 0);
    ASSERT_TRUE(node);
    EXPECT_EQ(grid.columnWidth("FunctionCode"), 4) << "the column's own width until settings are loaded";
    grid.Settings()->Load(node);
    EXPECT_EQ(grid.columnWidth("FunctionCode"), 9);
    EXPECT_EQ(grid.columnWidth("FunctionCodeDesc"), 4);
}

TEST_F(QueryContainerTest, WhatIsNotSavedIsLostOnRelease)
{
    const auto container = platform::queryContainerOf(platform::QueryCreator().Create(containerFolder(), 1));
    container->XObj()->TopQuery()->SetQueryOrg(query);
    container->XObj()->ObjectSet()->child("TopQGridCDevices");
    container->ReleaseXObj();
    const auto attached = container->XObj();
    EXPECT_EQ(attached->TopQuery()->QueryOrg()->Top()->Columns()->Count(), 0);
    EXPECT_EQ(platform::FindObject(attached->ObjectSet(), "TopQGridCDevices", "", 0), nullptr);
}

TEST_F(QueryContainerTest, PathResolverTakesTheSystemPathWhereTheSystemTreeExists)
{
    const platform::PathResolver resolver(world.workset());
    EXPECT_EQ(resolver.Resolve(kSystemPath, kFallbackPath), kFallbackPath);
    world.root(world.plant(), "@System");
    EXPECT_EQ(resolver.Resolve(kSystemPath, kFallbackPath), kFallbackPath) << "only the system project counts";
    world.root(world.base(), "@System");
    EXPECT_EQ(resolver.Resolve(kSystemPath, kFallbackPath), kSystemPath);
}

TEST_F(QueryContainerTest, FindObjectLooksAtMembersOrTheWholeTree)
{
    const auto set = std::make_shared<ObjectSetNode>();
    auto& grids = set->child("TopQGridCDevices");
    grids.child("QGrid").kind = "Grid";
    EXPECT_EQ(&set->child("TopQGridCDevices"), &grids) << "child makes a node only once";

    EXPECT_EQ(platform::FindObject(set, "TopQGridCDevices", "", 0).get(), &grids);
    EXPECT_EQ(platform::FindObject(set, "QGrid", "", 0), nullptr) << "mode 0: members only";
    EXPECT_EQ(platform::FindObject(set, "QGrid", "", 1).get(), &grids.children.front());
    EXPECT_EQ(platform::FindObject(set, "QGrid", "Settings", 1), nullptr) << "of another kind";
    EXPECT_TRUE(platform::FindObject(set, "QGrid", "Grid", 1));
}

TEST_F(QueryContainerTest, IdentTextNamesTheObjectForTheUser)
{
    EXPECT_EQ(platform::GetIdentTextForQuorlObject(e1), e1->SystemFullName() + " (Element E1)");
    e1->SetDescription("");
    EXPECT_EQ(platform::GetIdentTextForQuorlObject(e1), e1->SystemFullName());
    EXPECT_EQ(platform::GetIdentTextForQuorlObject(nullptr), "");
}

}  // namespace
}  // namespace pipespec::testing
