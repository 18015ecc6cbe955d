#pragma once

// A pipe class with three elements made from catalogue components, a query
// over them, and stand-ins for the two objects a list control gives the
// engine: the server of extended cells and the grid's event sink.

#include "diagnostics/HeadlessHost.h"
#include "objectmodel/Grid.h"
#include "platform/store/ObjectFactory.h"
#include "support/World.h"

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace pipespec::testing {

// Serves extended cells by column key ("Key" for every row, "Key/RowName" for
// one) and records what it is asked and given.
class ServedCells final : public IExtended {
public:
    int Version() const override { return 12; }
    Variant CellValue(const ObjectRef& row, const QueryColumnRef& column, int position,
                      const ObjectRef& cellObject) override
    {
        ++valueReads;
        lastPosition = position;
        lastCellObject = cellObject;
        const auto perRow = values.find(column->Key() + "/" + must(row).Name());
        return perRow != values.end() ? perRow->second : values[column->Key()];
    }
    // "Row/Key=value" per write.
    void SetCellValue(const ObjectRef& row, const QueryColumnRef& column, int, const ObjectRef&,
                      const Variant& value) override
    {
        written.push_back(must(row).Name() + "/" + column->Key() + "=" + diagnostics::describeValue(value));
    }
    ObjectRef CellObject(const ObjectRef&, const QueryColumnRef& column, int, const ObjectRef&) override
    {
        return objects[column->Key()];
    }
    void CellValueItems(const ObjectRef&, const QueryColumnRef& column, int, const ObjectRef&,
                        ICellItems& items) override
    {
        if (column->ExtendedKind() == extendedkind::CheckBox) items.SetKind(cellitems::TwoState);
    }
    void ShutDown() override { shutDown = true; }

    std::map<std::string, Variant> values;
    std::map<std::string, ObjectRef> objects;
    int valueReads = 0;
    int lastPosition = 0;
    ObjectRef lastCellObject;
    std::vector<std::string> written;
    bool shutDown = false;
};

// Records every event as a line ("HeadClick Name"), refuses what can be
// refused while `refuse` is set, and answers drags with `dragEffect`.
class RecordingSink final : public IQGridEvents {
public:
    int Version() override
    {
        record("Version");
        return 10;
    }
    void Change() override { record("Change"); }
    void BeforeColumnsDelete(const std::vector<QueryColumnRef>& columns, bool& cancel) override
    {
        std::string keys;
        for (const auto& column : columns) keys += " " + column->Key();
        cancel = record("BeforeColumnsDelete" + keys);
    }
    void AfterColumnsDelete() override { record("AfterColumnsDelete"); }
    void BeforeRowsDelete(const CollectionRef& rows, bool& cancel) override
    {
        cancel = record("BeforeRowsDelete " + std::to_string(rows->Count()));
    }
    void AfterRowsDelete() override { record("AfterRowsDelete"); }
    void OLECompleteDrag(int effect) override { record("OLECompleteDrag " + std::to_string(effect)); }
    void OLEDragDrop(const Variant& data, int& effect) override
    {
        record("OLEDragDrop " + std::to_string(effect));
        dropped = data;
    }
    void OLEDragOver(const Variant&, int& effect) override { effect = drag("OLEDragOver"); }
    void OLEStartDrag(const Variant& data, int& allowedEffects) override
    {
        if (record("OLEStartDrag " + std::to_string(data.collection()->Count()))) allowedEffects = dropeffect::None;
    }
    void OLETitleDragDrop(const Variant&, int& effect, const QueryColumnRef& column) override
    {
        record("OLETitleDragDrop " + std::to_string(effect) + " " + column->Key());
    }
    void OLETitleDragOver(const Variant&, int& effect, const QueryColumnRef& column) override
    {
        effect = drag("OLETitleDragOver " + column->Key());
    }
    void DblClick() override { record("DblClick"); }
    void PopUp(const PopUpMenuRef& menu) override { fill(*menu, "PopUp"); }
    void PopUpSubMenu(const PopUpMenuRef&, std::string_view key) override
    {
        record("PopUpSubMenu " + std::string(key));
    }
    void PopUpCmd(const PopUpMenuRef&, std::string_view key) override { record("PopUpCmd " + std::string(key)); }
    void TitlePopUp(const PopUpMenuRef& menu, const QueryColumnRef& column) override
    {
        fill(*menu, "TitlePopUp " + column->Key());
    }
    void TitlePopUpSubMenu(const PopUpMenuRef&, std::string_view key, const QueryColumnRef& column) override
    {
        record("TitlePopUpSubMenu " + std::string(key) + " " + column->Key());
    }
    void TitlePopUpCmd(const PopUpMenuRef&, std::string_view key, const QueryColumnRef& column) override
    {
        record("TitlePopUpCmd " + std::string(key) + " " + column->Key());
    }
    void AfterCellEdit(const ObjectRef& row, const QueryColumnRef& column) override
    {
        record("AfterCellEdit " + row->Name() + " " + column->Key());
    }
    void BeforeCellEdit(const ObjectRef& row, const QueryColumnRef& column, bool& cancel) override
    {
        cancel = record("BeforeCellEdit " + row->Name() + " " + column->Key());
    }
    void BeforeCreateStdPopUp(const PopUpMenuRef&) override { record("BeforeCreateStdPopUp"); }
    void HeadClick(const QueryColumnRef& column) override { record("HeadClick " + column->Key()); }
    void AfterRowsMove() override { record("AfterRowsMove"); }
    void ColumnsChanged() override { record("ColumnsChanged"); }

    // The entries a pipe-spec control's menu starts with: a separator, a
    // command, a sub-menu of one entry, and a disabled entry with an icon.
    static void fillSolveMenu(IPopUpMenu& menu)
    {
        menu.Add("Dummy", "---");
        menu.Add("Refresh", "~0056e Aktualisieren");
        menu.Add(">Solve", "~05156 Solve template pipe spec");
        menu.Add("Solve|SolveTemplate", "~057a8 ohne Ablaufverfolgung");
        menu.Add("Paste", "~00161 Einfügen");
        menu.SetImage("Paste", "std_Paste");
        menu.Disable("Paste");
    }

    // The events since the last call.
    std::vector<std::string> take() { return std::exchange(events_, {}); }

    bool refuse = false;
    int dragEffect = dropeffect::None;
    std::function<void(IPopUpMenu&)> fillMenu;
    Variant dropped;
    // Hears each event as it is recorded, to look at the world at that moment.
    std::function<void(const std::string&)> heard;

private:
    // Whether to refuse the event.
    bool record(std::string line)
    {
        if (heard) heard(line);
        events_.push_back(std::move(line));
        return refuse;
    }
    int drag(std::string line)
    {
        record(std::move(line));
        return dragEffect;
    }
    void fill(IPopUpMenu& menu, std::string line)
    {
        record(std::move(line));
        if (fillMenu) fillMenu(menu);
    }
    std::vector<std::string> events_;
};

// BASE holds the catalogue: a flange (code 10100, from the value list
// "Funktion" with description "Flange") and a tee (71000). PLANT holds the
// pipe class PC-1 with the elements E1 (flange), E2 (tee) and E3 (flange,
// code 10200 of its own). Every element has a range answer RANGE.DN with the
// bounds 15 and 100.
class QueryFixture : public ::testing::Test {
protected:
    QueryFixture()
    {
        functions->row("10100")->SetDescription("Flange");
        functions->row("10200")->SetDescription("Blind flange");
        functions->row("71000")->SetDescription("Tee");
        flange->SetDescription("Weld neck flange");
        for (const auto& coded : {flange, tee, e3}) coded->Spec("GD.VFCD")->SetStandardTable(functions);
    }

    DeviceRef element(const std::string& name, const DeviceRef& component, support::Attributes more = {}) const
    {
        auto made = world.device(pipeClass, name, more, component);
        made->SetDescription("Element " + name);
        world.list(made, "RANGE.DN", {"15", "100"});
        return made;
    }
    // The elements as row objects, in this order.
    CollectionRef rows(std::initializer_list<DeviceRef> objects) const
    {
        auto list = world.workset()->NewCollection();
        for (const auto& object : objects) list->Add(object);
        return list;
    }
    QueryColumnRef column(const std::string& key, int valueKind, int sourceKind = sourcekind::None,
                          const std::string& sourceName = "") const
    {
        auto made = query->Top()->Columns()->Add(key, -1);
        made->SetValueKind(valueKind);
        if (sourceKind != sourcekind::None) made->Source()->Set(sourceKind, sourceName);
        return made;
    }
    // A column whose cells the server serves.
    QueryColumnRef extended(const std::string& key, int kind = extendedkind::Value) const
    {
        auto made = column(key, valuekind::None);
        made->SetExtendedKind(kind);
        return made;
    }
    // A server registered as the list control registers it.
    std::shared_ptr<ServedCells> serve(std::map<std::string, Variant> values = {}) const
    {
        auto served = std::make_shared<ServedCells>();
        served->values = std::move(values);
        query->Top()->RegisterExtended("QuorlPipeSpecComp.PipeSpecComp", served);
        return served;
    }
    // The names of the rows the query shows, in order: "E1 E3".
    std::string shown() const
    {
        std::vector<std::string> names;
        for (int row = 1; row <= query->RowCount(); ++row) names.push_back(query->RowObject(row)->Name());
        return support::join(names);
    }
    // The texts of a row's cells: "E1|Flange".
    std::string cells(int row, std::initializer_list<QueryColumnRef> columns) const
    {
        std::vector<std::string> texts;
        for (const auto& column : columns) texts.push_back(query->CellText(row, column));
        return support::join(texts, "|");
    }

    support::World world;
    std::shared_ptr<platform::StandardTable> functions =
        world.table(world.base(), "Funktion", {"10100", "10200", "71000"});
    DeviceRef catalogue = world.root(world.base(), "@40");
    DeviceRef flange = world.device(catalogue, "FL-1", {{"GD.VFCD", "10100"}});
    DeviceRef tee = world.device(catalogue, "TE-1", {{"GD.VFCD", "71000"}});
    DeviceRef pipeClass = world.pipeClass(world.root(world.plant(), "@20"), "PC-1", "10000");
    DeviceRef e1 = element("E1", flange);
    DeviceRef e2 = element("E2", tee);
    DeviceRef e3 = element("E3", flange, {{"GD.VFCD", "10200"}});
    QueryRef query = platform::createQuery("QuorlQuery.Query");
};

}  // namespace pipespec::testing
