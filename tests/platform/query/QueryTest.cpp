// The query engine: columns by key and position, what each kind of cell
// shows and takes back, filters and their links, sorts, and the promise that
// Refresh reads no more cells than filters and sorts need.

#include "objectmodel/ExpectError.h"
#include "platform/query/Query.h"
#include "platform/query/QueryFixture.h"

#include <gmock/gmock.h>

namespace pipespec::testing {
namespace {

using ::testing::ElementsAre;
using checks::errorNumber;

std::vector<std::string> keysOf(const IQueryColumns& columns)
{
    std::vector<std::string> keys;
    for (int i = 1; i <= columns.Count(); ++i) keys.push_back(columns.Item(i)->Key());
    return keys;
}

using QueryTest = QueryFixture;

TEST_F(QueryTest, QueriesAreMadeByKindName)
{
    EXPECT_TRUE(std::dynamic_pointer_cast<platform::Query>(platform::createQuery("QuorlQuery.Query")));
    EXPECT_TRUE(platform::createQueryCreator("QuorlQueryXObj.QCreator"));
    EXPECT_EQ(errorNumber([] { platform::createQuery("QuorlQuery.Other"); }), err::CannotCreateObject);
    EXPECT_EQ(errorNumber([] { platform::createQueryCreator("QuorlQuery.Query"); }), err::CannotCreateObject);
}

TEST_F(QueryTest, ColumnsAreFoundByKeyAndPlacedByPosition)
{
    auto& columns = *query->Top()->Columns();
    const auto a = columns.Add("A", -1);
    columns.Add("B", -1);
    columns.Add("C", 1);
    EXPECT_THAT(keysOf(columns), ElementsAre("C", "A", "B"));
    EXPECT_EQ(columns.Item("A"), a);
    EXPECT_EQ(columns.Item("a"), nullptr) << "keys compare exactly";
    EXPECT_EQ(errorNumber([&] { columns.Add("A", -1); }), err::DuplicateKey);

    // Taken out and put back: at a place, behind the last, or at the end.
    EXPECT_EQ(columns.Remove("A"), a);
    EXPECT_EQ(columns.Item("A"), nullptr);
    int placedAt = 0;
    columns.Insert(a, 2, placedAt);
    EXPECT_EQ(placedAt, 2);
    EXPECT_THAT(keysOf(columns), ElementsAre("C", "A", "B"));
    const auto c = columns.Remove(1);
    columns.Insert(c, 99, placedAt);
    EXPECT_EQ(placedAt, 3);
    EXPECT_THAT(keysOf(columns), ElementsAre("A", "B", "C"));
    columns.Insert(columns.Remove("A"), -1, placedAt);
    EXPECT_THAT(keysOf(columns), ElementsAre("B", "C", "A"));

    EXPECT_EQ(errorNumber([&] { columns.Insert(c, 1, placedAt); }), err::DuplicateKey) << "C is in place";
    EXPECT_EQ(columns.Remove("missing"), nullptr);
    EXPECT_EQ(errorNumber([&] { columns.Remove(4); }), err::SubscriptOutOfRange);
    EXPECT_EQ(errorNumber([&] { columns.Item(0); }), err::SubscriptOutOfRange);
    EXPECT_EQ(errorNumber([&] { columns.Add("D", 0); }), err::InvalidCall);

    columns.Clear();
    EXPECT_EQ(columns.Count(), 0);
    EXPECT_EQ(columns.Item("B"), nullptr);
}

TEST_F(QueryTest, ColumnsRefuseValuesTheEngineDoesNotKnow)
{
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
    EXPECT_EQ(query->CellText(1, name), "E1");
    EXPECT_EQ(query->CellText(1, description), "Element E1");
    EXPECT_EQ(query->CellText(1, owner), "PC-1");
    EXPECT_EQ(query->CellText(1, component), "FL-1 - Weld neck flange");
    EXPECT_EQ(query->CellText(1, componentName), "FL-1");
    EXPECT_EQ(query->CellText(1, code), "10100") << "inherited from the component";
    EXPECT_EQ(query->CellText(1, function), "Flange") << "the value-list description of the base column's attribute";
    EXPECT_EQ(query->CellText(2, code), "10200") << "the element's own value";
    EXPECT_EQ(query->CellText(2, function), "Blind flange");
    EXPECT_EQ(query->CellText(1, lower), "15");
    EXPECT_EQ(query->CellText(1, upper), "100");
    EXPECT_EQ(query->CellValue(1, placeholder), Variant());
    EXPECT_EQ(query->CellValue(1, notAnAttribute), Variant());
    EXPECT_EQ(query->CellValue(1, missing), Variant());

    // The cell object is what the column resolved, before a value is taken.
    EXPECT_EQ(query->CellObject(1, owner), pipeClass);
    EXPECT_EQ(query->CellObject(1, componentName), flange);
    EXPECT_EQ(query->CellObject(2, function), e3->Spec("GD.VFCD"));
    EXPECT_EQ(query->CellObject(1, name), e1);
}

TEST_F(QueryTest, ExtendedColumnsAreServedByTheRegisteredObject)
{
    const auto code = column("FunctionCode", valuekind::Value, sourcekind::Attribute, "GD.VFCD");
    const auto group = column("GroupColumn", valuekind::None);
    group->SetBaseColumn(code);
    group->SetExtendedKind(extendedkind::Object);
    const auto errors = column("ErrorObjects", valuekind::None);
    errors->SetExtendedKind(extendedkind::Value);
    const auto branch = column("BranchComponents", valuekind::None);
    branch->SetExtendedKind(extendedkind::CheckBox);
    query->Top()->SetObjects(rows({e2, e3}));
    query->Refresh();

    EXPECT_EQ(query->CellValue(1, errors), Variant()) << "no server registered";

    auto served = std::make_shared<ServedCells>();
    served->values = {{"ErrorObjects", 1}, {"GroupColumn", "shown as value"}, {"BranchComponents", 2}};
    query->Top()->RegisterExtended("QuorlPipeSpecComp.PipeSpecComp", served);
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
    const auto branch = column("BranchComponents", valuekind::None);
    branch->SetExtendedKind(extendedkind::CheckBox);
    for (const auto& editable : {name, description, code, function, upper, component, missing, branch})
        editable->SetEditable(true);
    const auto fixed = column("Fixed", valuekind::Name);
    query->Top()->SetObjects(rows({e1}));
    query->Refresh();

    query->SetCellValue(1, name, "E1-NEW");
    query->SetCellValue(1, description, "renamed");
    query->SetCellValue(1, upper, 200);
    EXPECT_EQ(e1->Name(), "E1-NEW");
    EXPECT_EQ(e1->Description(), "renamed");
    EXPECT_EQ(e1->Spec("RANGE.DN")->GetXValue(1), "200");

    // An inherited attribute becomes the element's own; the component keeps its value.
    query->SetCellValue(1, code, "10200");
    EXPECT_FALSE(e1->Spec("GD.VFCD")->SystemTemporary());
    EXPECT_EQ(e1->Spec("GD.VFCD")->Value(), "10200");
    EXPECT_EQ(flange->Spec("GD.VFCD")->Value(), "10100");
    // A display value goes back as the value it describes.
    query->SetCellValue(1, function, "Tee");
    EXPECT_EQ(e1->Spec("GD.VFCD")->Value(), "71000");

    auto served = std::make_shared<ServedCells>();
    query->Top()->RegisterExtended("QuorlPipeSpecComp.PipeSpecComp", served);
    query->SetCellValue(1, branch, true);
    ASSERT_EQ(served->written.size(), 1U);
    EXPECT_EQ(served->written.front(), std::make_pair(std::string("E1-NEW/BranchComponents"), Variant(true)));

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

    const auto codeAtLeast = query->Filters()->Add(-1);
    codeAtLeast->SetColumn(code);
    codeAtLeast->SetOperator(filteroperator::AtLeast);
    codeAtLeast->SetValue(10200);
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E2", "E3"));

    // The open end of the chain is the last filter until it is linked on.
    EXPECT_EQ(query->Filters()->Add(-1), codeAtLeast);
    codeAtLeast->SetLink(filterlink::And);
    const auto nameIs = query->Filters()->Add(-1);
    EXPECT_NE(nameIs, codeAtLeast);
    EXPECT_EQ(query->Filters()->Count(), 2);
    nameIs->SetColumn(name);
    nameIs->SetOperator(filteroperator::NotEqual);
    nameIs->SetValue("E2");
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E3"));

    // "or" makes alternatives: (code >= 10200 and name <> E2) or description contains "E1".
    nameIs->SetLink(filterlink::Or);
    const auto contains = query->Filters()->Add(-1);
    contains->SetColumn(description);
    contains->SetOperator(filteroperator::Contains);
    contains->SetValue("E1");
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E1", "E3"));

    // A filter without an operator or column takes no part.
    contains->SetOperator(filteroperator::None);
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E3"));

    // Numbers compare as numbers, other texts byte by byte.
    codeAtLeast->SetValue("9");
    nameIs->SetLink(filterlink::None);
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E1", "E3"));
    codeAtLeast->SetValue("9x");
    query->Refresh();
    EXPECT_TRUE(shownNames().empty()) << "\"10100\" < \"9x\" as texts";
}

// How the list control hides permitted elements: its extended column answers
// 0 or 1, and a filter "at least" the member's value keeps the rows it should.
TEST_F(QueryTest, AnAtLeastFilterOnAnExtendedColumnShowsOnlyFailedRows)
{
    const auto errors = column("ErrorObjects", valuekind::None);
    errors->SetExtendedKind(extendedkind::Value);
    auto served = std::make_shared<ServedCells>();
    served->values = {{"ErrorObjects", 0}, {"ErrorObjects/E2", 1}};
    query->Top()->RegisterExtended("QuorlPipeSpecComp.PipeSpecComp", served);
    query->Top()->SetObjects(rows({e1, e2, e3}));
    const auto filter = query->Filters()->Add(-1);
    filter->SetColumn(errors);
    filter->SetOperator(filteroperator::AtLeast);

    filter->SetValue(std::int32_t{0});
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E1", "E2", "E3"));
    filter->SetValue(std::int32_t{1});
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E2"));
}

TEST_F(QueryTest, NumericColumnsSortAsNumbersOthersAsText)
{
    const auto code = column("Code", valuekind::Value, sourcekind::Attribute, "GD.CODE");
    const auto name = column("Name", valuekind::Name);
    const auto e4 = element("E4", flange);
    world.attribute(e1, "GD.CODE", "9");
    world.attribute(e2, "GD.CODE", "100");
    world.attribute(e3, "GD.CODE", "abc");
    world.attribute(e4, "GD.CODE", "10");
    query->Top()->SetObjects(rows({e1, e2, e3, e4}));
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E1", "E2", "E3", "E4")) << "no sort: the order of the row objects";

    // Sorts are counted from 0; Item makes the level.
    const auto sort = query->Sorts()->Item(0);
    EXPECT_EQ(query->Sorts()->Count(), 1);
    sort->SetColumn(code);
    sort->SetDirection(sortdirection::Ascending);
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E4", "E2", "E1", "E3")) << "10, 100, 9, abc";

    code->SetNumeric(true);
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E1", "E4", "E2", "E3")) << "9, 10, 100, then what is no number";
    sort->SetDirection(sortdirection::Descending);
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E3", "E2", "E4", "E1"));

    // Mode 1 orders by the number within a text.
    world.attribute(e1, "GD.CODE", "DN 100");
    world.attribute(e2, "GD.CODE", "DN 20");
    world.attribute(e4, "GD.CODE", "DN 20");
    code->SetNumericMode(1);
    sort->SetDirection(sortdirection::Ascending);
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E2", "E4", "E1", "E3"));

    // A second level orders what the first leaves equal.
    const auto byName = query->Sorts()->Item(1);
    byName->SetColumn(name);
    byName->SetDirection(sortdirection::Descending);
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E4", "E2", "E1", "E3"));

    // A sort entry without a column keeps the order of the row objects.
    sort->SetColumn(nullptr);
    byName->SetColumn(nullptr);
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E1", "E2", "E3", "E4"));
}

TEST_F(QueryTest, RefreshReadsOnlyTheCellsFiltersAndSortsNeedOncePerRow)
{
    const auto shown = column("Shown", valuekind::None);
    shown->SetExtendedKind(extendedkind::Value);
    const auto ordered = column("Ordered", valuekind::None);
    ordered->SetExtendedKind(extendedkind::Value);
    auto served = std::make_shared<ServedCells>();
    served->values = {{"Ordered/E1", 3}, {"Ordered/E2", 1}, {"Ordered/E3", 2}};
    query->Top()->RegisterExtended("QuorlPipeSpecComp.PipeSpecComp", served);
    query->Top()->SetObjects(rows({e1, e2, e3}));

    query->Refresh();
    EXPECT_EQ(served->valueReads, 0);
    query->CellValue(2, shown);
    EXPECT_EQ(served->valueReads, 1) << "a cell is read when asked for";

    served->valueReads = 0;
    const auto sort = query->Sorts()->Item(0);
    sort->SetColumn(ordered);
    sort->SetDirection(sortdirection::Ascending);
    query->Refresh();
    EXPECT_THAT(shownNames(), ElementsAre("E2", "E3", "E1"));
    EXPECT_EQ(served->valueReads, 3) << "one read per row, not per comparison";
}

TEST_F(QueryTest, CopyCarriesEverythingButIsAQueryOfItsOwn)
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
    const auto function = column("FunctionCodeDesc", valuekind::DisplayValue);
    function->SetBaseColumn(code);
    const auto errors = column("ErrorObjects", valuekind::None);
    errors->SetExtendedKind(extendedkind::Value);
    const auto filter = query->Filters()->Add(-1);
    filter->SetColumn(errors);
    filter->SetOperator(filteroperator::AtLeast);
    filter->SetValue(1);
    query->Sorts()->Item(0)->SetColumn(code);
    query->Sorts()->Item(0)->SetDirection(sortdirection::Descending);
    auto served = std::make_shared<ServedCells>();
    served->values = {{"ErrorObjects", 1}};
    query->Top()->RegisterExtended("QuorlPipeSpecComp.PipeSpecComp", served);
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
}

TEST_F(QueryTest, ShutDownLetsGoOfRowsAndServers)
{
    auto served = std::make_shared<ServedCells>();
    query->Top()->RegisterExtended("QuorlPipeSpecComp.PipeSpecComp", served);
    query->Top()->SetObjects(rows({e1}));
    query->Refresh();
    query->ShutDown();
    EXPECT_TRUE(served->shutDown);
    EXPECT_EQ(query->RowCount(), 0);
    EXPECT_EQ(query->Top()->Objects(), nullptr);
}

}  // namespace
}  // namespace pipespec::testing
