// Refresh of a query over 50,000 elements with one filter and one sort, and
// the first screen of cells the grid then shows: the cost of reopening a long
// component list until the user sees it.

#include "platform/store/Database.h"
#include "platform/store/ObjectFactory.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

using namespace pipespec;

constexpr int kRows = 50'000;
constexpr int kScreenRows = 40;

// Elements with function codes spread over 10000..99999, in no order.
struct Elements {
    std::shared_ptr<platform::Database> database = platform::Database::create();
    CollectionRef objects = database->workset()->NewCollection();

    Elements()
    {
        const auto root = database->addProject("PLANT")->addRoot("@20");
        for (int i = 0; i < kRows; ++i) {
            const auto element = root->createChild(std::string("E").append(std::to_string(i)));
            element->createSpec("GD")->createSpec("VFCD")->SetValue(std::to_string(10000 + (i * 7919) % 90000));
            objects->Add(element);
        }
    }
};

// Every cell of the rows one screen shows, read as the grid reads them.
void readScreen(const IQuery& query)
{
    const auto columns = query.Top()->Columns();
    const int rows = std::min(kScreenRows, query.RowCount());
    for (int row = 1; row <= rows; ++row)
        for (int column = 1; column <= columns->Count(); ++column)
            benchmark::DoNotOptimize(query.CellText(row, columns->Item(column)));
}

// Arg 0 sorts by the numeric function code, arg 1 by the name, as text.
void BM_QueryRefresh50k(benchmark::State& state)
{
    static const Elements elements;
    const auto query = platform::createQuery(platform::kQueryKind);
    const auto columns = query->Top()->Columns();
    const auto name = columns->Add("Name", -1);
    name->SetValueKind(valuekind::Name);
    const auto code = columns->Add("FunctionCode", -1);
    code->SetValueKind(valuekind::Value);
    code->Source()->Set(sourcekind::Attribute, "GD.VFCD");
    code->SetNumeric(true);

    const auto filter = query->Filters()->Add(-1);
    filter->SetColumn(code);
    filter->SetOperator(filteroperator::AtLeast);
    filter->SetValue(55000);
    const auto sort = query->Sorts()->Item(0);
    sort->SetColumn(state.range(0) == 0 ? code : name);
    sort->SetDirection(sortdirection::Ascending);
    query->Top()->SetObjects(elements.objects);

    for (auto _ : state) {
        query->Refresh();
        readScreen(*query);
    }
    if (query->RowCount() < kScreenRows || std::atoi(query->CellText(1, code).c_str()) < 55000)
        state.SkipWithError("the refresh did not keep what the filter asks for");
    state.SetItemsProcessed(state.iterations() * kRows);
    state.counters["shown"] = query->RowCount();
}
BENCHMARK(BM_QueryRefresh50k)->ArgName("sortByName")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
