// The Qt grid over a 50,000-row query: from handing it the query to its
// first painted screen, and a scroll by one screen. Each also counts what a
// paint asks of the model and reads from the query, against the cells the
// screen shows: the model reads visible cells only.

#include "platform/store/Database.h"
#include "platform/store/ObjectFactory.h"
#include "qtplatform/QtGrid.h"

#include <QApplication>
#include <QPixmap>
#include <QScrollBar>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

using namespace pipespec;

constexpr int kRows = 50'000;

// Elements with a name, a description and a function code, in a refreshed
// query of four columns as the component list shows them.
struct Elements {
    std::shared_ptr<platform::Database> database = platform::Database::create();
    QueryRef query = platform::createQuery(platform::kQueryKind);

    Elements()
    {
        const auto root = database->addProject("PLANT")->addRoot("@20");
        auto objects = database->workset()->NewCollection();
        for (int i = 0; i < kRows; ++i) {
            const auto element = root->createChild(std::string("E").append(std::to_string(i)));
            element->SetDescription(std::string("Element number ").append(std::to_string(i)));
            element->createSpec("GD")->createSpec("VFCD")->SetValue(std::to_string(10000 + (i * 7919) % 90000));
            objects->Add(element);
        }
        const auto columns = query->Top()->Columns();
        const auto name = columns->Add("Name", -1);
        name->SetValueKind(valuekind::Name);
        name->SetObjectColumn(true);
        columns->Add("Description", -1)->SetValueKind(valuekind::Description);
        columns->Item("Description")->SetWidth(10);
        const auto code = columns->Add("FunctionCode", -1);
        code->SetValueKind(valuekind::Value);
        code->Source()->Set(sourcekind::Attribute, "GD.VFCD");
        code->SetNumeric(true);
        const auto component = columns->Add("Component", -1);
        component->SetValueKind(valuekind::Component);
        component->SetWidth(7);
        query->Top()->SetObjects(objects);
        query->Refresh();
    }
};

const Elements& elements()
{
    static const Elements made;
    return made;
}

// A grid the size of a list on a screen, shown.
struct Screen {
    qtplatform::QtGrid grid{"QGrid"};

    Screen()
    {
        grid.resize(1000, 700);
        grid.show();
    }

    // Paints everything the grid shows; how many cells were read for it.
    long paint(benchmark::State& state)
    {
        grid.tableModel().resetReads();
        benchmark::DoNotOptimize(grid.grab());
        const auto reads = grid.tableModel().reads();
        const long visible = visibleCells();
        state.counters["dataCallsPerPaint"] = static_cast<double>(reads.dataCalls);
        state.counters["cellReadsPerPaint"] = static_cast<double>(reads.cellReads);
        state.counters["visibleCells"] = static_cast<double>(visible);
        if (reads.cellReads > visible) state.SkipWithError("a paint read cells that it does not show");
        return reads.cellReads;
    }

    long visibleCells() const
    {
        const auto* viewport = grid.viewport();
        const int lastRow = grid.rowAt(viewport->height() - 1);
        const int rows = (lastRow < 0 ? grid.tableModel().rowCount() - 1 : lastRow) - grid.rowAt(0) + 1;
        long columns = 0;
        for (int section = 0; section < grid.tableModel().columnCount(); ++section)
            if (!grid.isColumnHidden(section) && grid.columnViewportPosition(section) < viewport->width()) ++columns;
        return rows * columns;
    }
};

void BM_QtGridShowQuery50k(benchmark::State& state)
{
    Screen screen;
    for (auto _ : state) {
        screen.grid.SetQuery(elements().query);
        QCoreApplication::processEvents();
        if (screen.paint(state) == 0) state.SkipWithError("the first paint read no cell");
    }
}
BENCHMARK(BM_QtGridShowQuery50k)->Unit(benchmark::kMillisecond);

void BM_QtGridScrollOneScreen50k(benchmark::State& state)
{
    Screen screen;
    screen.grid.SetQuery(elements().query);
    QCoreApplication::processEvents();
    auto* bar = screen.grid.verticalScrollBar();
    for (auto _ : state) {
        const int next = bar->value() + bar->pageStep();
        bar->setValue(next > bar->maximum() ? 0 : next);
        screen.paint(state);
    }
}
BENCHMARK(BM_QtGridScrollOneScreen50k)->Unit(benchmark::kMillisecond);

}  // namespace
