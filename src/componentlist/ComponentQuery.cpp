// The query of the component list: its columns, the stored query container
// it is loaded from or stored into, and the three refresh levels (a new
// pipe class rebuilds, the recursive box and solving re-read the objects,
// filter and column commands re-evaluate).

#include "componentlist/PipeSpecComp.h"
#include "frame/QueryColumns.h"

#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "elements/AddToPipeClass.h"
#include "platform/query/ExtendedServers.h"
#include "platform/query/QueryContainer.h"
#include "platform/store/Database.h"
#include "platform/store/ObjectFactory.h"
#include "qtplatform/QtGrid.h"
#include "selectors/Chapters.h"

#include <QCheckBox>

#include <vector>

namespace pipespec::componentlist {

namespace {
// The stored query is a setting of the site, not the user's work: storing it
// is no step that Edit → Undo would take back, and it is saved all the same.
class OutsideUndo {
public:
    explicit OutsideUndo(IWorkset& workset) : workset_(workset), kept_(workset.CurrentUndoState())
    {
        workset_.SetCurrentUndoState(nullptr);
    }
    ~OutsideUndo() { workset_.SetCurrentUndoState(kept_); }
    OutsideUndo(const OutsideUndo&) = delete;
    OutsideUndo& operator=(const OutsideUndo&) = delete;

private:
    IWorkset& workset_;
    UndoStateRef kept_;
};

constexpr std::string_view kQueryContainerNode = "TopQGridCDevices";

// The container of a kind of pipe class: where it is looked for and what a
// new one is described as.
struct ContainerPath {
    std::string_view systemPath;
    std::string_view fallbackPath;
    std::string_view description;
};

constexpr ContainerPath kPipeClassContainer{"@System|@O|@PCL|PCL", "@20|A70|Y10|M23|A20|A10",
                                            msg::StandardPipeClassQuery};
constexpr ContainerPath kPdmsContainer{"@System|@O|@PCL|PDMS", "@20|A70|Y10|M23|A20|A20",
                                       msg::StandardPipeClassQueryPdms};

std::string translated(std::string_view text) { return diagnostics::utilities().Translate(text); }

std::vector<std::string> splitPath(const std::string& path)
{
    std::vector<std::string> names;
    std::size_t from = 0;
    for (std::size_t bar = path.find('|'); bar != std::string::npos; bar = path.find('|', from)) {
        names.push_back(path.substr(from, bar - from));
        from = bar + 1;
    }
    names.push_back(path.substr(from));
    return names;
}

void addRangeColumn(IQueryColumns& columns, std::string_view key, std::string_view title, const std::string& attribute)
{
    frame::showRangeBound(*frame::appendColumn(columns, key, title, valuekind::DisplayValue, 2, true), attribute);
}

// The container in the system project, where the database has one, else on
// the current project's chain down to the base project, where it is stored.
DeviceRef containerAt(const IProject& project, const std::string& path)
{
    if (const auto found = asDevice(project.ObjectByFullName(project.SystemProject(), path))) return found;
    return asDevice(project.ObjectByPath(path, 0));
}

}  // namespace

void PipeSpecComp::registerCells(const QueryRef& query) { query->Top()->RegisterExtended(cls::PipeSpecComp, cells_); }

CollectionRef PipeSpecComp::components() const { return addtopipeclass::PipeClassComponents(mPipeClass, recursive()); }

QueryRef PipeSpecComp::QueryCreate(QueryRef query)
{
    const diagnostics::Trace trace(classString(), "QueryCreate");
    trace.enter();
    diagnostics::Procedure procedure(classString(), "Private Function 'QueryCreate'");
    const auto step = [&](auto&& statement) { procedure.step(statement); };
    const auto& names = diagnostics::names();
    if (!query) query = platform::createQuery(platform::kQueryKind);
    const auto columns = query->Top()->Columns();
    const bool pdms = pdmsMode();
    QueryColumnRef sortColumn;
    CheckColumnPipeClass(query);
    step([&] {
        auto code = columns->Item("FunctionCode");
        if (!code) {
            code = frame::appendColumn(*columns, "FunctionCode", msg::FunctionCode, valuekind::Value, 3, false);
            code->Source()->Set(sourcekind::Attribute, pdms ? names.Pipe().VSTD() : names.GD().VFCD());
        }
        if (pdms) {
            code->SetTitle(translated(msg::GenericType));
            sortColumn = code;
        }
        code->SetNumeric(!pdms);
    });
    if (pdms)
        step([&] {
            auto group = columns->Item("GroupColumn");
            if (!group) {
                group = frame::appendColumn(*columns, "GroupColumn", msg::PipePartType, valuekind::None, 3, false);
                group->SetBaseColumn(columns->Item("FunctionCode"));
                group->SetExtendedKind(extendedkind::Object);
                registerCells(query);
            }
            sortColumn = group;
        });
    step([&] {
        if (columns->Item("FunctionCodeDesc")) return;
        frame::appendColumn(*columns, "FunctionCodeDesc", msg::Function, valuekind::DisplayValue, 7, false)
            ->SetBaseColumn(columns->Item("FunctionCode"));
    });
    step([&] {
        if (!columns->Item("Name"))
            frame::appendColumn(*columns, "Name", msg::Name, valuekind::Name, 4, true)->SetObjectColumn(true);
    });
    step([&] {
        if (!columns->Item("Component"))
            frame::appendColumn(*columns, "Component", msg::PipePart, valuekind::Component, 7, false)
                ->Source()
                ->Set(sourcekind::BaseObject, "");
    });
    step([&] {
        if (!columns->Item("Description"))
            frame::appendColumn(*columns, "Description", msg::Description, valuekind::Description, 10, true);
    });
    step([&] {
        if (!columns->Item("NameRangeLower"))
            addRangeColumn(*columns, "NameRangeLower", msg::NominalDiameterFrom, names.Range().NameRangeLowerAttr());
        columns->Item("NameRangeLower")->SetGrouping(0);
    });
    step([&] {
        if (!columns->Item("NameRangeUpper"))
            addRangeColumn(*columns, "NameRangeUpper", msg::NominalDiameterTo, names.Range().NameRangeUpperAttr());
        columns->Item("NameRangeUpper")->SetGrouping(0);
    });
    m_BranchDefined = false;
    step([&] {
        auto branch = columns->Item("BranchComponents");
        if (!branch) {
            branch = frame::appendColumn(*columns, "BranchComponents", msg::BranchComponents, valuekind::None, 2, true);
            branch->SetExtendedKind(extendedkind::CheckBox);
            registerCells(query);
        }
        branch->SetGrouping(0);
    });
    gQueryI = query;
    CheckColumnPIDFunctionCode();
    CheckColumnErrorObjects();
    // Outside PDMS mode no column was remembered: a stored sort is dropped.
    step([&] {
        const auto sort = query->Sorts()->Item(0);
        sort->SetColumn(sortColumn);
        sort->SetDirection(sortdirection::Ascending);
    });
    trace.leave();
    return query;
}

void PipeSpecComp::CheckColumnPipeClass(const QueryRef& query)
{
    handle("Private Sub 'CheckColumnPipeClass'", [&] {
        if (!query) return;
        const auto columns = query->Top()->Columns();
        auto column = columns->Item("PipeClass");
        if (!column) {
            column = columns->Add("PipeClass", 1);
            column->Source()->Set(sourcekind::Owner, "");
            column->SetTitle(translated(msg::PipeClass));
            column->SetValueKind(valuekind::Name);
            column->SetWidth(4);
            column->SetEditable(false);
            column->SetObjectColumn(true);
        }
        // Only a list of several classes' elements needs the column.
        column->SetVisible(recursive());
    });
}

void PipeSpecComp::CheckColumnPIDFunctionCode()
{
    handle("Private Sub 'CheckColumnPIDFunctionCode'", [&] {
        if (!gQueryI) return;
        const auto columns = gQueryI->Top()->Columns();
        auto column = columns->Item("PIDFunctionCodeVisible");
        if (!column && m_PIDColumnVisible) {
            column = frame::appendColumn(*columns, "PIDFunctionCodeVisible", msg::PidFunctionCode, valuekind::None, 4,
                                         false);
            column->SetBaseColumn(columns->Item("FunctionCode"));
            column->SetExtendedKind(extendedkind::Object);
            registerCells(gQueryI);
        }
        if (column) column->SetVisible(m_PIDColumnVisible);
    });
}

// The invisible column "ErrorObjects" carries the filter of the rows that
// fail the element check; it is joined to the filters already there.
void PipeSpecComp::CheckColumnErrorObjects()
{
    handle("Private Sub 'CheckColumnErrorObjects'", [&] {
        if (!gQueryI) return;
        const auto columns = gQueryI->Top()->Columns();
        auto column = columns->Item("ErrorObjects");
        if (!column) {
            column = frame::appendColumn(*columns, "ErrorObjects", "", valuekind::None, 0, false);
            column->SetExtendedKind(extendedkind::Value);
            registerCells(gQueryI);
        }
        column->SetVisible(false);
        const auto filters = gQueryI->Filters();
        QueryFilterRef filter;
        for (int i = 1; i <= filters->Count() && !filter; ++i)
            if (const auto candidate = filters->Item(i)->Column(); candidate && candidate->Key() == column->Key())
                filter = filters->Item(i);
        if (!filter) {
            if (filters->Count() > 0) filters->Add(-1)->SetLink(filterlink::And);
            filter = filters->Add(-1);
            filter->SetColumn(column);
        }
        filter->SetOperator(filteroperator::AtLeast);
        filter->SetValue(Variant(m_OnlyNotPermitted));
    });
}

// The grid's presentation: the user may move columns but not delete them.
void PipeSpecComp::QueryGridInit()
{
    handle("Private Sub 'QueryGridInit'", [&] {
        QGrid->setColumnsMovable(true);
        QGrid->setColumnsDeletable(false);
    });
}

void PipeSpecComp::Refresh()
{
    const diagnostics::Trace trace(classString(), "Refresh");
    trace.enter();
    diagnostics::Procedure procedure(classString(), "Private Sub 'Refresh'");
    const auto step = [&](auto&& statement) { procedure.step(statement); };
    if (!mPipeClass) return;
    gWorkset = mPipeClass->Workset();
    // A query loaded from its container serves its extended cells through
    // the server published for the class, as it is not registered again.
    step([&] { platform::publishExtendedServer(must(gWorkset), cls::PipeSpecComp, cells_); });
    bool loaded = true;
    if (!gQueryI) {
        step([&] { addtopipeclass::moduleState(must(gWorkset)).m_MenuCDev = nullptr; });
        QueryGridInit();
        loaded = LoadQueryByContainer();
    }
    gQueryI = QueryCreate(gQueryI);
    QueryGridInit();
    step([&] {
        QGrid->setWorkset(std::dynamic_pointer_cast<platform::StoreWorkset>(gWorkset));
        QGrid->SetEventSink(events_);
    });
    m_PDMS = pdmsMode();
    step([&] { gQueryI->Top()->SetObjects(components()); });
    step([&] { gQueryI->Refresh(); });
    step([&] {
        QGrid->SetQuery(gQueryI);
        QGrid->Refresh();
    });
    // The store comes last, so that its message shows over a filled list.
    if (!loaded) CreateContainer();
    trace.leave();
}

bool PipeSpecComp::LoadQueryByContainer()
{
    const diagnostics::Trace trace(classString(), "LoadQueryByContainer");
    trace.enter();
    trace.text("enter");
    bool result = false;
    std::shared_ptr<IQueryContainer> container;
    std::shared_ptr<IQueryXObj> QXObj;
    handle("Private Functioon 'LoadQueryByContainer'", [&] {
        if (!gWorkset) return;
        const auto project = gWorkset->CurrentProject();
        const auto& where = pdmsMode() ? kPdmsContainer : kPipeClassContainer;
        const auto path = platform::PathResolver(gWorkset).Resolve(where.systemPath, where.fallbackPath);
        const auto TQContainer = containerAt(must(project), path);
        if (!TQContainer) return;
        trace.object("TQContainer", TQContainer);
        container = platform::queryContainerOf(TQContainer);
        if (!container || !container->HasXObj()) return;
        trace.text("getting TQContainer.XObj...");
        QXObj = container->XObj();
        const auto TopQueryI = must(QXObj).TopQuery();
        const auto QueryOrg = must(TopQueryI).QueryOrg();
        gQueryI = must(QueryOrg).Copy();
        trace.text("copy QueryOrg done");
        const auto settings = QGrid->Settings();
        auto node = platform::FindObject(QXObj->ObjectSet(), kQueryContainerNode, "", 0);
        if (!node) return;
        node = platform::FindObject(node, settings->Name(), "", 0);
        if (!node) return;
        settings->Load(node);
        result = true;
    });
    if (QXObj) container->ReleaseXObj();
    trace.leave();
    return result;
}

// Stores the present query as a new container in the base project, where
// none is yet and the user may write there; then says where it went.
void PipeSpecComp::CreateContainer()
{
    const diagnostics::Trace trace(classString(), "CreateContainer");
    trace.enter();
    if (!gQueryI || !gWorkset) return;
    const auto saved = gWorkset->CurrentProject();
    auto target = saved;
    handle("Private Sub 'CreateContainer'", [&] {
        if (must(target).BaseProject()) target = target->BaseProject();
        if ((target->AccessRights() & 1) == 0) return;
        const OutsideUndo setting(*gWorkset);
        const auto& where = pdmsMode() ? kPdmsContainer : kPipeClassContainer;
        const auto names = splitPath(platform::PathResolver(gWorkset).Resolve(where.systemPath, where.fallbackPath));
        const auto switchToTarget = [&] {
            if (target != saved) gWorkset->SetCurrentProject(target);
        };
        DeviceRef current;
        DeviceRef device;
        for (std::size_t i = 0; i < names.size(); ++i) {
            const auto list = current ? current->CDevices() : nullptr;
            device = list ? asDevice(list->Item(names[i])) : asDevice(target->ObjectByFullName(target, names[i]));
            if (device) {
                current = device;
                continue;
            }
            if (i + 1 == names.size()) break;
            switchToTarget();
            device = asDevice(must(list).CreateNewWithName(names[i]));
            current = device;
        }
        if (device) return;
        switchToTarget();
        const auto made = must(platform::createQueryCreator(platform::kQueryCreatorKind)).Create(current, 1);
        made->SetName(names.back());
        made->SetDescription(translated(where.description));
        auto& container = must(platform::queryContainerOf(made));
        must(container.XObj()).TopQuery()->SetQueryOrg(gQueryI->Copy());
        container.Save();
        container.ReleaseXObj();
        diagnostics::utilities().MessageBox(translated(msg::QuerySettingsSaved) + "\n\n" +
                                                translated(msg::QueryContainer) + "\n" +
                                                platform::GetIdentTextForQuorlObject(made),
                                            mb::Information, "");
    });
    if (target != saved && gWorkset->CurrentProject() != saved) gWorkset->SetCurrentProject(saved);
    trace.leave();
}

void PipeSpecComp::QueryRefresh()
{
    const diagnostics::Trace trace(classString(), "QueryRefresh");
    trace.enter();
    handle("Sub QueryRefresh", [&] {
        trace.text("calling gQueryI.Refresh ...");
        must(gQueryI).Refresh();
        trace.text("calling QGrid.Refresh ...");
        QGrid->Refresh();
        trace.text("...back");
    });
    trace.leave();
}

void PipeSpecComp::Reread()
{
    const diagnostics::Trace trace(classString(), "Reread");
    trace.enter();
    handle("Private Sub 'Reread'", [&] {
        must(gQueryI).Top()->SetObjects(components());
        CheckColumnPipeClass(gQueryI);
        QueryRefresh();
    });
    trace.leave();
}

}  // namespace pipespec::componentlist
