#pragma once

// A pipe class with three elements made from catalogue components, a query
// over them, and stand-ins for the two objects a list control gives the
// engine: the server of extended cells and the grid's event sink.

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

// Serves extended cells from tables by column key and records what it is asked.
class ServedCells final : public IExtended {
public:
    int Version() const override { return 12; }

    Variant CellValue(const ObjectRef& row, const QueryColumnRef& column, int position, const ObjectRef& cellObject) override
    {
        ++valueReads;
        lastPosition = position;
        lastCellObject = cellObject;
        const auto perRow = values.find(column->Key() + "/" + must(row).Name());
        if (perRow != values.end()) return perRow->second;
        const auto found = values.find(column->Key());
        return found == values.end() ? Variant() : found->second;
    }

    void SetCellValue(const ObjectRef& row, const QueryColumnRef& column, int, const ObjectRef&, const Variant& value) override
    {
        written.emplace_back(must(row).Name() + "/" + column->Key(), value);
    }

    ObjectRef CellObject(const ObjectRef&, const QueryColumnRef& column, int, const ObjectRef&) override
    {
        const auto found = objects.find(column->Key());
        return found == objects.end() ? nullptr : found->second;
    }

    void CellValueItems(const ObjectRef&, const QueryColumnRef& column, int, const ObjectRef&, ICellItems& items) override
    {
        if (column->ExtendedKind() == extendedkind::CheckBox) items.SetKind(cellitems::TwoState);
    }

    void ShutDown() override { shutDown = true; }

    // "Key" for every row, "Key/RowName" for one row.
    std::map<std::string, Variant> values;
    std::map<std::string, ObjectRef> objects;
    int valueReads = 0;
    int lastPosition = 0;
    ObjectRef lastCellObject;
    std::vector<std::pair<std::string, Variant>> written;
    bool shutDown = false;
};

// Records every event as a line ("HeadClick Name") and answers as told.
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
        record("BeforeColumnsDelete" + keys);
        cancel = refuse;
    }
    void AfterColumnsDelete() override { record("AfterColumnsDelete"); }
    void BeforeRowsDelete(const CollectionRef& rows, bool& cancel) override
    {
        record("BeforeRowsDelete " + std::to_string(rows->Count()));
        cancel = refuse;
    }
    void AfterRowsDelete() override { record("AfterRowsDelete"); }
    void OLECompleteDrag(int effect) override { record("OLECompleteDrag " + std::to_string(effect)); }
    void OLEDragDrop(const Variant& data, int& effect) override
    {
        record("OLEDragDrop " + std::to_string(effect));
        dropped = data;
    }
    void OLEDragOver(const Variant&, int& effect) override
    {
        record("OLEDragOver");
        effect = dragEffect;
    }
    void OLEStartDrag(const Variant& data, int& allowedEffects) override
    {
        record("OLEStartDrag " + std::to_string(data.collection() ? data.collection()->Count() : 0));
        if (refuse) allowedEffects = dropeffect::None;
    }
    void OLETitleDragDrop(const Variant&, int& effect, const QueryColumnRef& column) override
    {
        record("OLETitleDragDrop " + std::to_string(effect) + " " + column->Key());
    }
    void OLETitleDragOver(const Variant&, int& effect, const QueryColumnRef& column) override
    {
        record("OLETitleDragOver " + column->Key());
        effect = dragEffect;
    }
    void DblClick() override { record("DblClick"); }
    void PopUp(const PopUpMenuRef& menu) override
    {
        record("PopUp");
        if (fillMenu) fillMenu(*menu);
    }
    void PopUpSubMenu(const PopUpMenuRef&, std::string_view key) override { record("PopUpSubMenu " + std::string(key)); }
    void PopUpCmd(const PopUpMenuRef&, std::string_view key) override { record("PopUpCmd " + std::string(key)); }
    void TitlePopUp(const PopUpMenuRef& menu, const QueryColumnRef& column) override
    {
        record("TitlePopUp " + column->Key());
        if (fillMenu) fillMenu(*menu);
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
        record("BeforeCellEdit " + row->Name() + " " + column->Key());
        cancel = refuse;
    }
    void BeforeCreateStdPopUp(const PopUpMenuRef&) override { record("BeforeCreateStdPopUp"); }
    void HeadClick(const QueryColumnRef& column) override { record("HeadClick " + column->Key()); }
    void AfterRowsMove() override { record("AfterRowsMove"); }
    void ColumnsChanged() override { record("ColumnsChanged"); }

    // The events since the last call.
    std::vector<std::string> take() { return std::exchange(events, {}); }

    bool refuse = false;
    int dragEffect = dropeffect::None;
    std::function<void(IPopUpMenu&)> fillMenu;
    Variant dropped;
    // Hears each event as it is recorded, to look at the world at that moment.
    std::function<void(const std::string&)> heard;

private:
    void record(std::string line)
    {
        if (heard) heard(line);
        events.push_back(std::move(line));
    }
    std::vector<std::string> events;
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
        const auto functions = world.table(world.base(), "Funktion", {"10100", "10200", "71000"});
        functions->row("10100")->SetDescription("Flange");
        functions->row("10200")->SetDescription("Blind flange");
        functions->row("71000")->SetDescription("Tee");
        const auto catalogue = world.root(world.base(), "@40");
        flange = world.device(catalogue, "FL-1", {{"GD.VFCD", "10100"}});
        flange->SetDescription("Weld neck flange");
        flange->Spec("GD.VFCD")->SetStandardTable(functions);
        tee = world.device(catalogue, "TE-1", {{"GD.VFCD", "71000"}});
        tee->Spec("GD.VFCD")->SetStandardTable(functions);

        pipeClass = world.pipeClass(world.root(world.plant(), "@20"), "PC-1", "10000");
        e1 = element("E1", flange);
        e2 = element("E2", tee);
        e3 = element("E3", flange);
        world.attribute(e3, "GD.VFCD", "10200");
        e3->Spec("GD.VFCD")->SetStandardTable(functions);
    }

    DeviceRef element(const std::string& name, const DeviceRef& component)
    {
        auto made = world.device(pipeClass, name);
        made->SetDescription("Element " + name);
        made->SetCDevice(component);
        const auto range = world.attribute(made, "RANGE.DN", "");
        range->SetXValue(0, "15");
        range->SetXValue(1, "100");
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

    // The names of the rows the query shows, in order.
    std::vector<std::string> shownNames() const
    {
        std::vector<std::string> names;
        for (int row = 1; row <= query->RowCount(); ++row) names.push_back(query->RowObject(row)->Name());
        return names;
    }

    support::World world;
    DeviceRef flange, tee, pipeClass, e1, e2, e3;
    QueryRef query = platform::createQuery("QuorlQuery.Query");
};

}  // namespace pipespec::testing
