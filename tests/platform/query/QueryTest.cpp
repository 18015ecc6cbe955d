// The query engine: columns by key and position, what each kind of cell
// shows and takes back, filters and their links, sorts, and the promise that
// Refresh reads no more cells than filters and sorts need; and the query
// containers that store a query with its grid settings.

#include "platform/query/Query.h"
#include "objectmodel/ExpectError.h"
#include "platform/query/ExtendedServers.h"
#include "platform/query/HeadlessGrid.h"
#include "platform/query/QueryContainer.h"
#include "platform/query/QueryFixture.h"

#include <gmock/gmock.h>

namespace pipespec::testing {
namespace {

using checks::errorNumber;

std::string keysOf(const IQueryColumns& columns)
{
    std::vector<std::string> keys;
    for (int i = 1; i <= columns.Count(); ++i) keys.push_back(columns.Item(i)->Key());
    return support::join(keys);
}

using QueryTest = QueryFixture;

TEST_F(QueryTest, ColumnsAreFoundByKeyAndPlacedByPosition)
{
    auto& columns = *query->Top()->Columns();
    const auto a = columns.Add("A", -1);
    columns.Add("B", -1);
    columns.Add("C", 1);
    EXPECT_EQ(keysOf(columns), "C A B");
    EXPECT_EQ(columns.Item("A"), a);
    EXPECT_EQ(columns.Item("a"), nullptr) << "keys compare exactly";
    EXPECT_EQ(errorNumber([&] { columns.Add("A", -1); }), err::DuplicateKey);
    // Taken out and put back: at a place, behind the last, or at the end.
    EXPECT_EQ(columns.Remove("A"), a);
    EXPECT_EQ(columns.Item("A"), nullptr);
    int placedAt = 0;
    columns.Insert(a, 2, placedAt);
    EXPECT_EQ(placedAt, 2);
    EXPECT_EQ(keysOf(columns), "C A B");
    const auto c = columns.Remove(1);
    columns.Insert(c, 99, placedAt);
    EXPECT_EQ(placedAt, 3);
    EXPECT_EQ(keysOf(columns), "A B C");
    columns.Insert(columns.Remove("A"), -1, placedAt);
    EXPECT_EQ(keysOf(columns), "B C A");
    EXPECT_EQ(errorNumber([&] { columns.Insert(c, 1, placedAt); }), err::DuplicateKey) << "C is in place";
    EXPECT_EQ(columns.Remove("missing"), nullptr);
    EXPECT_EQ(errorNumber([&] { columns.Remove(4); }), err::SubscriptOutOfRange);
    EXPECT_EQ(errorNumber([&] { columns.Item(0); }), err::SubscriptOutOfRange);
    EXPECT_EQ(errorNumber([&] { columns.Add("D", 0); }), err::InvalidCall);
    columns.Clear();
    EXPECT_EQ(columns.Count(), 0);
    EXPECT_EQ(columns.Item("B"), nullptr);
}

TEST_F(QueryTest, TheEngineRefusesKindsAndValuesItDoesNotKnow)
{
    EXPECT_TRUE(std::dynamic_pointer_cast<platform::Query>(query));
    EXPECT_TRUE(platform::createQueryCreator("QuorlQueryXObj.QCreator"));
    EXPECT_EQ(errorNumber([] { platform::createQuery("QuorlQuery.Other"); }), err::CannotCreateObject);
    EXPECT_EQ(errorNumber([] { platform::createQueryCreator("QuorlQuery.Query"); }), err::CannotCreateObject);
    const auto a = query->Top()->Columns()->Add("A", -1);
    const auto b = query->Top()->Columns()->Add("B", -1);
    EXPECT_EQ(errorNumber([&] { a->SetValueKind(3); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([&] { a->SetExtendedKind(4); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([&] { a->SetValueParameter("2"); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([&] { a->SetNumericMode(2); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([&] { a->SetWidth(-1); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([&] { a->Source()->Set(14, ""); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([&] { query->Filters()->Add(1); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([&] { query->Sorts()->Item(-1); }), err::SubscriptOutOfRange);
    b->SetBaseColumn(a);
    EXPECT_EQ(errorNumber([&] { a->SetBaseColumn(b); }), err::CycleRefused);
    EXPECT_EQ(errorNumber([&] { a->SetBaseColumn(a); }), err::CycleRefused);
    EXPECT_EQ(a->BaseColumn(), nullptr);
}

TEST_F(QueryTest, CellsShowWhatTheirValueKindTakesFromTheirSource)
{
    const auto name = column("Name", valuekind::Name);
    const auto description = column("Description", valuekind::Description);
    const auto owner = column("PipeClass", valuekind::Name, sourcekind::Owner);
    const auto component = column("Component", valuekind::Component, sourcekind::BaseObject);
    const auto componentName = column("ComponentName", valuekind::Name, sourcekind::BaseObject);
    const auto code = column("FunctionCode", valuekind::Value, sourcekind::Attribute, "GD.VFCD");
    // The value-list description of the base column's attribute.
    const auto function = column("FunctionCodeDesc", valuekind::DisplayValue);
    function->SetBaseColumn(code);
    const auto lower = column("Lower", valuekind::RangeBound, sourcekind::Attribute, "RANGE.DN");
    lower->SetValueParameter("0");
    const auto upper = column("Upper", valuekind::RangeBound, sourcekind::Attribute, "RANGE.DN");
    upper->SetValueParameter("1");
    const auto placeholder = column("Placeholder", valuekind::None);
    const auto notAnAttribute = column("NotAnAttribute", valuekind::Value);
    const auto missing = column("Missing", valuekind::Value, sourcekind::Attribute, "GD.NONE");
    query->Top()->SetObjects(rows({e1, e3}));
    query->Refresh();
    ASSERT_EQ(query->RowCount(), 2);
    // E1 inherits its code from the component, E3 has one of its own.
    EXPECT_EQ(cells(1, {name, description, owner, component, componentName, code, function, lower, upper}),
              "E1|Element E1|PC-1|FL-1 - Weld neck flange|FL-1|10100|Flange|15|100");
    EXPECT_EQ(cells(2, {code, function}), "10200|Blind flange");
    for (const auto& empty : {placeholder, notAnAttribute, missing}) EXPECT_EQ(query->CellValue(1, empty), Variant());
    // The cell object is what the column resolved, before a value is taken.
    EXPECT_EQ(query->CellObject(1, owner), pipeClass);
    EXPECT_EQ(query->CellObject(1, componentName), flange);
    EXPECT_EQ(query->CellObject(2, function), e3->Spec("GD.VFCD"));
    EXPECT_EQ(query->CellObject(1, name), e1);
}

TEST_F(QueryTest, ExtendedColumnsAreServedByTheLatestRegisteredObjectThatLives)
{
    const auto code = column("FunctionCode", valuekind::Value, sourcekind::Attribute, "GD.VFCD");
    const auto group = extended("GroupColumn", extendedkind::Object);
    group->SetBaseColumn(code);
    const auto errors = extended("ErrorObjects");
    const auto branch = extended("BranchComponents", extendedkind::CheckBox);
    query->Top()->SetObjects(rows({e2, e3}));
    query->Refresh();
    EXPECT_EQ(query->CellValue(1, errors), Variant()) << "no server registered";
    auto served = serve({{"ErrorObjects", 1}, {"GroupColumn", "shown as value"}, {"BranchComponents", 2}});
    EXPECT_EQ(query->CellValue(2, errors), Variant(1));
    EXPECT_EQ(served->lastPosition, 2);
    EXPECT_EQ(served->lastCellObject, e3) << "a column without source resolves the row";
    EXPECT_EQ(query->CellValue(1, branch), Variant(true)) << "a check box reads its value as a flag";
    EXPECT_EQ(query->CellItemsKind(1, branch), cellitems::TwoState);
    EXPECT_EQ(query->CellItemsKind(1, code), cellitems::Text);
    // An object cell shows the server's object, and its value when there is none.
    EXPECT_EQ(query->CellText(1, group), "shown as value");
    EXPECT_EQ(served->lastCellObject, e2->Spec("GD.VFCD")) << "the base column's source";
    served->objects["GroupColumn"] = tee;
    EXPECT_EQ(query->CellValue(1, group).object(), tee);
    EXPECT_EQ(query->CellText(1, group), "TE-1");
    // The latest registration serves; a server that is gone serves nothing.
    auto other = std::make_shared<ServedCells>();
    other->values = {{"ErrorObjects", 0}};
    query->Top()->RegisterExtended("Other.Control", other);
    EXPECT_EQ(query->CellValue(1, errors), Variant(0));
    other.reset();
    EXPECT_EQ(query->CellValue(1, errors), Variant(1));
    served.reset();
    EXPECT_EQ(query->CellValue(1, errors), Variant());
}

TEST_F(QueryTest, EditableCellsWriteBackWhereTheyRead)
{
    const auto name = column("Name", valuekind::Name);
    const auto description = column("Description", valuekind::Description);
    const auto code = column("FunctionCode", valuekind::Value, sourcekind::Attribute, "GD.VFCD");
    const auto function = column("FunctionCodeDesc", valuekind::DisplayValue, sourcekind::Attribute, "GD.VFCD");
    const auto upper = column("Upper", valuekind::RangeBound, sourcekind::Attribute, "RANGE.DN");
    upper->SetValueParameter("1");
    const auto component = column("Component", valuekind::Component, sourcekind::BaseObject);
    const auto missing = column("Missing", valuekind::Value, sourcekind::Attribute, "GD.NONE");
    const auto branch = extended("BranchComponents", extendedkind::CheckBox);
    for (const auto& editable : {name, description, code, function, upper, component, missing, branch})
        editable->SetEditable(true);
    const auto fixed = column("Fixed", valuekind::Name);
    query->Top()->SetObjects(rows({e1}));
    query->Refresh();
    query->SetCellValue(1, name, "E1-NEW");
    query->SetCellValue(1, description, "renamed");
    query->SetCellValue(1, upper, 200);
    EXPECT_EQ(e1->Name() + " " + e1->Description() + " " + e1->Spec("RANGE.DN")->GetXValue(1), "E1-NEW renamed 200");
    // An inherited attribute becomes the element's own; the component keeps its value.
    query->SetCellValue(1, code, "10200");
    EXPECT_FALSE(e1->Spec("GD.VFCD")->SystemTemporary());
    EXPECT_EQ(e1->Spec("GD.VFCD")->Value(), "10200");
    EXPECT_EQ(flange->Spec("GD.VFCD")->Value(), "10100");
    // A display value goes back as the value it describes.
    query->SetCellValue(1, function, "Tee");
    EXPECT_EQ(e1->Spec("GD.VFCD")->Value(), "71000");
    const auto served = serve();
    query->SetCellValue(1, branch, true);
    EXPECT_EQ(served->written, std::vector<std::string>{"E1-NEW/BranchComponents=True"});
    EXPECT_EQ(errorNumber([&] { query->SetCellValue(1, fixed, "x"); }), err::ReadOnly);
    EXPECT_EQ(errorNumber([&] { query->SetCellValue(1, component, "x"); }), err::ReadOnly);
    EXPECT_EQ(errorNumber([&] { query->SetCellValue(1, missing, "x"); }), err::ObjectNotSet);
    EXPECT_EQ(errorNumber([&] { query->SetCellValue(2, name, "x"); }), err::SubscriptOutOfRange);
}

TEST_F(QueryTest, FiltersPickRowsAndLinkIntoAlternatives)
{
    const auto name = column("Name", valuekind::Name);
    const auto code = column("FunctionCode", valuekind::Value, sourcekind::Attribute, "GD.VFCD");
    const auto description = column("Description", valuekind::Description);
    query->Top()->SetObjects(rows({e1, e2, e3}));
    const auto filter = [&](const QueryColumnRef& on, int op, const Variant& value) {
        const auto made = query->Filters()->Add(-1);
        made->SetColumn(on);
        made->SetOperator(op);
        made->SetValue(value);
        query->Refresh();
        return made;
    };
    const auto codeAtLeast = filter(code, filteroperator::AtLeast, 10200);
    EXPECT_EQ(shown(), "E2 E3");
    // The open end of the chain is the last filter until it is linked on.
    EXPECT_EQ(query->Filters()->Add(-1), codeAtLeast);
    codeAtLeast->SetLink(filterlink::And);
    const auto nameIs = filter(name, filteroperator::NotEqual, "E2");
    EXPECT_EQ(query->Filters()->Count(), 2);
    EXPECT_EQ(shown(), "E3");
    // "or" makes alternatives: (code >= 10200 and name <> E2) or description contains "E1".
    nameIs->SetLink(filterlink::Or);
    const auto contains = filter(description, filteroperator::Contains, "E1");
    EXPECT_EQ(shown(), "E1 E3");
    // A filter without an operator or column takes no part.
    contains->SetOperator(filteroperator::None);
    query->Refresh();
    EXPECT_EQ(shown(), "E3");
    // Numbers compare as numbers, other texts byte by byte: "10100" < "9x".
    codeAtLeast->SetValue("9");
    nameIs->SetLink(filterlink::None);
    query->Refresh();
    EXPECT_EQ(shown(), "E1 E3");
    codeAtLeast->SetValue("9x");
    query->Refresh();
    EXPECT_EQ(shown(), "");
}

// How the list control hides permitted elements: its extended column answers
// 0 or 1, and a filter "at least" the member's value keeps the failed rows.
TEST_F(QueryTest, AnAtLeastFilterOnAnExtendedColumnShowsOnlyFailedRows)
{
    const auto served = serve({{"ErrorObjects", 0}, {"ErrorObjects/E2", 1}});
    query->Top()->SetObjects(rows({e1, e2, e3}));
    const auto filter = query->Filters()->Add(-1);
    filter->SetColumn(extended("ErrorObjects"));
    filter->SetOperator(filteroperator::AtLeast);
    filter->SetValue(std::int32_t{0});
    query->Refresh();
    EXPECT_EQ(shown(), "E1 E2 E3");
    filter->SetValue(std::int32_t{1});
    query->Refresh();
    EXPECT_EQ(shown(), "E2");
}

TEST_F(QueryTest, NumericColumnsSortAsNumbersOthersAsText)
{
    const auto code = column("Code", valuekind::Value, sourcekind::Attribute, "GD.CODE");
    const auto name = column("Name", valuekind::Name);
    const auto e4 = element("E4", flange);
    const auto codes = [&](const char* c1, const char* c2, const char* c3, const char* c4) {
        for (const auto& [row, value] : {std::pair{e1, c1}, {e2, c2}, {e3, c3}, {e4, c4}})
            world.attribute(row, "GD.CODE", value);
        query->Refresh();
        return shown();
    };
    query->Top()->SetObjects(rows({e1, e2, e3, e4}));
    EXPECT_EQ(codes("9", "100", "abc", "10"), "E1 E2 E3 E4") << "no sort: the order of the row objects";
    // Sorts are counted from 0; Item makes the level.
    const auto sort = query->Sorts()->Item(0);
    EXPECT_EQ(query->Sorts()->Count(), 1);
    sort->SetColumn(code);
    sort->SetDirection(sortdirection::Ascending);
    query->Refresh();
    EXPECT_EQ(shown(), "E4 E2 E1 E3") << "10, 100, 9, abc";
    code->SetNumeric(true);
    query->Refresh();
    EXPECT_EQ(shown(), "E1 E4 E2 E3") << "9, 10, 100, then what is no number";
    sort->SetDirection(sortdirection::Descending);
    query->Refresh();
    EXPECT_EQ(shown(), "E3 E2 E4 E1");
    // Mode 1 orders by the number within a text; a second level orders what the first leaves equal.
    code->SetNumericMode(1);
    sort->SetDirection(sortdirection::Ascending);
    EXPECT_EQ(codes("DN 100", "DN 20", "abc", "DN 20"), "E2 E4 E1 E3");
    const auto byName = query->Sorts()->Item(1);
    byName->SetColumn(name);
    byName->SetDirection(sortdirection::Descending);
    query->Refresh();
    EXPECT_EQ(shown(), "E4 E2 E1 E3");
    // A sort entry without a column keeps the order of the row objects.
    sort->SetColumn(nullptr);
    byName->SetColumn(nullptr);
    query->Refresh();
    EXPECT_EQ(shown(), "E1 E2 E3 E4");
}

TEST_F(QueryTest, RefreshReadsOnlyTheCellsFiltersAndSortsNeedOncePerRow)
{
    const auto shownCell = extended("Shown");
    const auto ordered = extended("Ordered");
    const auto served = serve({{"Ordered/E1", 3}, {"Ordered/E2", 1}, {"Ordered/E3", 2}});
    query->Top()->SetObjects(rows({e1, e2, e3}));
    query->Refresh();
    EXPECT_EQ(served->valueReads, 0);
    query->CellValue(2, shownCell);
    EXPECT_EQ(served->valueReads, 1) << "a cell is read when asked for";
    served->valueReads = 0;
    const auto sort = query->Sorts()->Item(0);
    sort->SetColumn(ordered);
    sort->SetDirection(sortdirection::Ascending);
    query->Refresh();
    EXPECT_EQ(shown(), "E2 E3 E1");
    EXPECT_EQ(served->valueReads, 3) << "one read per row, not per comparison";
}

TEST_F(QueryTest, CopyCarriesEverythingButIsAQueryOfItsOwnAndShutDownLetsGoOfRowsAndServers)
{
    const auto code = column("FunctionCode", valuekind::Value, sourcekind::Attribute, "GD.VFCD");
    code->SetTitle("~010fd Funktionscode");
    code->SetWidth(3);
    code->SetVisible(false);
    code->SetObjectColumn(true);
    code->SetNumeric(true);
    code->SetNumericMode(1);
    code->SetSizeToContent(false);
    code->SetRefreshed(true);
    code->SetEditable(true);
    code->SetSortable(false);
    code->SetGrouping(0);
    column("FunctionCodeDesc", valuekind::DisplayValue)->SetBaseColumn(code);
    const auto filter = query->Filters()->Add(-1);
    filter->SetColumn(extended("ErrorObjects"));
    filter->SetOperator(filteroperator::AtLeast);
    filter->SetValue(1);
    query->Sorts()->Item(0)->SetColumn(code);
    query->Sorts()->Item(0)->SetDirection(sortdirection::Descending);
    const auto served = serve({{"ErrorObjects", 1}});
    query->Top()->SetObjects(rows({e1, e2}));
    query->Refresh();
    const auto copy = query->Copy();
    const auto& original = dynamic_cast<const platform::Query&>(*query);
    EXPECT_EQ(dynamic_cast<const platform::Query&>(*copy).definition(), original.definition());
    EXPECT_EQ(copy->RowCount(), 0) << "rows come with the copy's own Refresh";
    copy->Refresh();
    EXPECT_EQ(copy->RowCount(), 2) << "same row objects, same server";
    // The copy's columns are its own, and refer to each other.
    const auto copiedCode = copy->Top()->Columns()->Item("FunctionCode");
    EXPECT_NE(copiedCode, code);
    EXPECT_EQ(copy->Top()->Columns()->Item("FunctionCodeDesc")->BaseColumn(), copiedCode);
    EXPECT_EQ(copy->Filters()->Item(1)->Column(), copy->Top()->Columns()->Item("ErrorObjects"));
    copiedCode->SetTitle("changed");
    copy->Top()->Columns()->Add("Extra", -1);
    EXPECT_EQ(code->Title(), "~010fd Funktionscode");
    EXPECT_EQ(query->Top()->Columns()->Count(), 3);
    // Stored, a query keeps its server's class name: rebuilt, it is served by
    // the server published for that class, without a registration of its own.
    const auto stored = platform::Query::fromDefinition(original.definition());
    stored->Top()->SetObjects(rows({e1, e2}));
    stored->Refresh();
    EXPECT_EQ(stored->RowCount(), 0) << "nothing published: the filter's cells are empty";
    platform::publishExtendedServer(*e1->Workset(), "QuorlPipeSpecComp.PipeSpecComp", served);
    stored->Refresh();
    EXPECT_EQ(stored->RowCount(), 2);
    query->ShutDown();
    EXPECT_TRUE(served->shutDown);
    EXPECT_EQ(query->RowCount(), 0);
    EXPECT_EQ(query->Top()->Objects(), nullptr);
}

// ---- query containers: devices that carry a stored query and grid settings,
// found by path, read and written as copies.
constexpr std::string_view kSystemPath = "@System|@O|@PCL|PCL";
constexpr std::string_view kFallbackPath = "@20|A70|Y10|M23|A20|A10";

class QueryContainerTest : public QueryFixture {
protected:
    QueryContainerTest()
    {
        const auto code = column("FunctionCode", valuekind::Value, sourcekind::Attribute, "GD.VFCD");
        code->SetTitle("~010fd Funktionscode");
        code->SetNumeric(true);
        column("FunctionCodeDesc", valuekind::DisplayValue)->SetBaseColumn(code);
        const auto filter = query->Filters()->Add(-1);
        filter->SetColumn(code);
        filter->SetOperator(filteroperator::AtLeast);
        filter->SetValue(10200);
        query->Sorts()->Item(0)->SetColumn(code);
        query->Sorts()->Item(0)->SetDirection(sortdirection::Ascending);
    }

    static platform::QueryDefinition definitionOf(const QueryRef& stored)
    {
        return dynamic_cast<const platform::Query&>(*stored).definition();
    }

    DeviceRef folder = world.path(world.base(), "@20|A70|Y10|M23|A20");
    std::shared_ptr<IQueryCreator> creator = platform::createQueryCreator("QuorlQueryXObj.QCreator");
};

TEST_F(QueryContainerTest, CreatorMakesContainersWithOrWithoutAnAttachedObjectThatKeepsOnlyWhatIsSaved)
{
    const auto first = creator->Create(folder, 1);
    const auto second = creator->Create(folder, 0);
    EXPECT_EQ(first->Name() + " " + second->Name(), "TQContainer001 TQContainer002");
    EXPECT_EQ(first->Owner(), folder);
    EXPECT_FALSE(platform::queryContainerOf(second)->HasXObj());
    EXPECT_EQ(platform::queryContainerOf(second)->XObj(), nullptr);
    EXPECT_FALSE(platform::queryContainerOf(folder)->HasXObj()) << "a device no creator made";
    EXPECT_EQ(errorNumber([&] { creator->Create(folder, 2); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([&] { creator->Create(nullptr, 1); }), err::ObjectNotSet);
    const auto container = platform::queryContainerOf(first);
    ASSERT_TRUE(container->HasXObj());
    const auto attached = container->XObj();
    EXPECT_EQ(attached, container->XObj()) << "the same object until it is released";
    EXPECT_EQ(attached->TopQuery()->QueryOrg()->Top()->Columns()->Count(), 0) << "a new container holds an empty query";
    attached->TopQuery()->SetQueryOrg(query);
    attached->ObjectSet()->child("TopQGridCDevices");
    container->ReleaseXObj();
    EXPECT_EQ(container->XObj()->TopQuery()->QueryOrg()->Top()->Columns()->Count(), 0) << "not saved, lost";
    EXPECT_EQ(platform::FindObject(container->XObj()->ObjectSet(), "TopQGridCDevices", "", 0), nullptr);
}

TEST_F(QueryContainerTest, StoredQueryAndGridSettingsComeBackFromThePath)
{
    // The system path counts only where the base project has the system tree.
    const platform::PathResolver resolver(world.workset());
    EXPECT_EQ(resolver.Resolve(kSystemPath, kFallbackPath), kFallbackPath);
    world.root(world.plant(), "@System");
    EXPECT_EQ(resolver.Resolve(kSystemPath, kFallbackPath), kFallbackPath);
    const auto systemFolder = world.path(world.base(), "@System|@O|@PCL");
    const auto path = resolver.Resolve(kSystemPath, kFallbackPath);
    ASSERT_EQ(path, kSystemPath);
    // Store: the query as it is at SetQueryOrg, and a column width for the grid "QGrid".
    const auto device = creator->Create(systemFolder, 1);
    device->SetName("PCL");
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
    const auto again = platform::queryContainerOf(found)->XObj();
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
    const auto node = platform::FindObject(platform::FindObject(again->ObjectSet(), "TopQGridCDevices", "", 0),
                                           grid.Settings()->Name(), "", 0);
    ASSERT_TRUE(node);
    EXPECT_EQ(grid.columnWidth("FunctionCode"), 4) << "the column's own width until settings are loaded";
    grid.Settings()->Load(node);
    EXPECT_EQ(grid.columnWidth("FunctionCode"), 9);
    EXPECT_EQ(grid.columnWidth("FunctionCodeDesc"), 4);
}

TEST_F(QueryContainerTest, FindObjectLooksAtMembersOrTheWholeTreeAndIdentTextNamesAnObject)
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
    EXPECT_EQ(platform::GetIdentTextForQuorlObject(e1), e1->SystemFullName() + " (Element E1)");
    e1->SetDescription("");
    EXPECT_EQ(platform::GetIdentTextForQuorlObject(e1), e1->SystemFullName());
    EXPECT_EQ(platform::GetIdentTextForQuorlObject(nullptr), "");
}

}  // namespace
}  // namespace pipespec::testing
