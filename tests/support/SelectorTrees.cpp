#include "support/SelectorTrees.h"

#include "objectmodel/Options.h"
#include "platform/query/Query.h"

namespace pipespec::support {

DeviceRef selectorBase(const World& world)
{
    const auto& sele = world.names().Sele();
    const auto base = world.device(
        world.root(world.base(), "@40"), "SELBASE",
        {{sele.Answer(), ""}, {sele.NextQuestion(), ""}, {sele.DefaultAnswer(), ""}, {sele.SelectorType(), "1"}});
    world.workset()->Globals()->setoption(option::SelectorBase, base);
    return base;
}

DeviceRef selectorRoot(const World& world, const DeviceRef& pipeClass, const DeviceRef& base)
{
    const auto root = world.device(pipeClass, world.names().SelectorRoot());
    root->SetCDevice(base);
    return root;
}

DeviceRef selector(const World& world, const DeviceRef& owner, const std::string& name, const std::string& answer,
                   const std::string& question, const DeviceRef& base)
{
    const auto& sele = world.names().Sele();
    const auto made = world.device(owner, name, {{sele.Answer(), answer}, {sele.NextQuestion(), question}});
    made->SetCDevice(base);
    return made;
}

DeviceRef shopSelector(const World& world, const DeviceRef& root, const std::string& answer, const DeviceRef& base)
{
    const auto top = selector(world, root, answer, answer, world.names().PDMS() + ".SHOP", base);
    selector(world, top, "SHOP", "", "", base);
    return top;
}

std::unique_ptr<platform::HeadlessGrid> selectorGrid(const World& world, const std::vector<DeviceRef>& rows,
                                                     const std::vector<std::pair<std::string, std::string>>& columns)
{
    const auto query = std::make_shared<platform::Query>();
    for (const auto& [key, title] : columns) query->Top()->Columns()->Add(key, -1)->SetTitle(title);
    const auto objects = world.workset()->NewCollection();
    for (const auto& row : rows) objects->Add(row);
    query->Top()->SetObjects(objects);
    query->Refresh();
    auto grid = std::make_unique<platform::HeadlessGrid>("QGrid");
    grid->SetQuery(query);
    return grid;
}

std::vector<std::string> columnKeys(const IQGrid& grid)
{
    std::vector<std::string> keys;
    const auto columns = grid.Query()->Top()->Columns();
    for (int i = 1; i <= columns->Count(); ++i) keys.push_back(columns->Item(i)->Key());
    return keys;
}

std::vector<std::string> childNames(const DeviceRef& device)
{
    std::vector<std::string> names;
    const auto children = device->OwnElements();
    for (int i = 1; i <= children->Count(); ++i) names.push_back(children->Item(i)->Name());
    return names;
}

}  // namespace pipespec::support
