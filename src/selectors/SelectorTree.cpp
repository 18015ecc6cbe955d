// The selector tree and the grid that shows one chain of it per generic type:
// from a column to its selector, from the column order back into the tree,
// and the repair of torn range pairs before the order is read.

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/Options.h"
#include "objectmodel/Text.h"
#include "selectors/Chapters.h"
#include "selectors/ColumnKeys.h"
#include "selectors/Selectors.h"

#include <cstdlib>

namespace pipespec::addtopipeclass {

using diagnostics::Procedure;
namespace key = columnkey;

namespace {
constexpr std::string_view kRootBaseLink = "Sele.SeleCDev";
constexpr std::string_view kPipeClassBaseLink = "GD.Selector";
constexpr int kMarkLength = 3;
constexpr std::string_view kPipeBoreType = "2";
constexpr std::string_view kBoreDiameterType = "3";

DeviceRef deepestBase(DeviceRef base)
{
    while (const auto next = base->CDevice()) base = next;
    return base;
}

// The selectors on the chain from the leaf up to (not including) the top, by
// the question part of their names; a short name met a second time is entered
// under the whole name.
SelectorMap chainByShortName(DeviceRef cur, const DeviceRef& top)
{
    SelectorMap chain;
    while (cur) {
        const auto name = cur->Name();
        const auto shortName = key::questionPart(name);
        chain.Add(chain.Exists(shortName) ? name : shortName, cur);
        cur = asDevice(cur->Owner());
        if (same(cur, top)) break;
    }
    return chain;
}

// The selector named `element` directly under `cur`, found on the way up from
// the leaf; a climb that reaches a fixed root finds nothing.
DeviceRef selectorAboveLeaf(DeviceRef sel, const DeviceRef& cur, const std::string& element)
{
    while (sel) {
        const auto owner = sel->Owner();
        if (same(owner, cur)) return sel->Name() == element ? sel : nullptr;
        sel = must(owner).SystemType() == systemtype::Root ? nullptr : asDevice(owner);
    }
    return nullptr;
}

// Moves the own children of `from` under `to`, the last first; a child named
// `keep` stays where it is.
void moveChildren(const IDevice& from, const IDevice& to, const std::string* keep)
{
    const auto children = from.OwnElements();
    for (int i = children->Count(); i >= 1; --i) {
        const auto child = children->Item(i);
        if (keep && child->Name() == *keep) continue;
        to.OwnElements()->AddObject(children->Detach(child));
    }
}

void deleteUnlessDeleted(const ObjectRef& object)
{
    if (!object->IsDeleted() && !object->IsMarkedDeleted()) object->Delete();
}

// The selector name and the owner's question that one column stands for.
struct ColumnQuestion {
    std::string element;
    std::string question;
    bool rangePair = false;
};

ColumnQuestion questionOfColumn(const IQueryColumn& column)
{
    const auto title = column.Title();
    if (key::isBoreText(title)) return {title, title};
    const auto columnKey = column.Key();
    ColumnQuestion result{key::attributeName(columnKey), key::nestedName(columnKey)};
    if (key::hasRangeMark(result.element)) {
        result.rangePair = true;
        result.element = text::Mid(result.element, kMarkLength + 1);
        const auto chapterLength = static_cast<int>(result.question.size() - result.element.size()) - kMarkLength;
        result.question = text::Left(result.question, chapterLength) + result.element;
    }
    return result;
}

// Who of a torn pair was moved, judged by the order recorded before the move.
enum class PairRepair { None, ColumnFollowsPartner, PartnerFollowsColumn };

PairRepair repairOf(const ColumnOrder& old, const std::string& own, const std::string& partner, int i, int j)
{
    int p = 0;
    for (const auto& [recorded, column] : old) {
        if (recorded == own || recorded == partner) {
            if (p == i - 1) return PairRepair::ColumnFollowsPartner;
            if (p == j - 1) return PairRepair::PartnerFollowsColumn;
        }
        ++p;
    }
    return PairRepair::None;
}

int positionOf(const IQueryColumns& columns, const std::string& wanted)
{
    for (int j = 1; j <= columns.Count(); ++j)
        if (columns.Item(j)->Key() == wanted) return j;
    return 0;
}

// One scan over the columns; true when it changed them, and so must run again.
bool repairFirstTornPair(IQueryColumns& columns, const ColumnOrder& old)
{
    const int count = columns.Count();
    for (int i = 1; i <= count; ++i) {
        const auto own = columns.Item(i)->Key();
        const auto mark = key::rangeMarkOfKey(own);
        if (mark != "MIN" && mark != "MAX") continue;
        const auto partner = key::partnerKey(own);
        const int j = positionOf(columns, partner);
        if (j == 0) {
            columns.Remove(i);
            return true;
        }
        if (std::abs(i - j) == 1) continue;
        int placedAt = 0;
        switch (repairOf(old, own, partner, i, j)) {
        case PairRepair::None: continue;
        case PairRepair::ColumnFollowsPartner: columns.Insert(columns.Remove(i), j - 1, placedAt); return true;
        case PairRepair::PartnerFollowsColumn: columns.Insert(columns.Remove(j), i + 1, placedAt); return true;
        }
    }
    return false;
}
}  // namespace

DeviceRef GetSelectorBaseCDev(const DeviceRef& selector)
{
    DeviceRef result;
    Procedure(cls::AddToPipeClass, "GetSelectorBaseCDev").run([&] {
        if (!selector) return;
        if (const auto link = selector->Spec(kRootBaseLink)) result = link->LinkObject();
        if (!result)
            if (const auto link = must(selector->Owner()).Spec(kPipeClassBaseLink)) result = link->LinkObject();
        if (!result)
            result = must(must(selector->Workset()).Globals()).getOption(option::SelectorBase).objectAs<IDevice>();
    });
    return result;
}

DeviceRef SelectorCDeviceFromColumnDef(const QueryColumnRef& column, std::int16_t tab, const SelectorMap& tops,
                                       const SelectorMap& leaves)
{
    DeviceRef result;
    Procedure(cls::AddToPipeClass, "Function SelectorCDeviceFromColumnDef").run([&] {
        if (!column) return;
        const auto k = key::tabKey(tab);
        const auto columnKey = column->Key();
        if (!key::isQuestion(columnKey)) {
            result = tops.Item(k);
            return;
        }
        const auto title = column->Title();
        auto question = key::isBoreText(title) ? title : key::attributeName(columnKey);
        const auto chain = chainByShortName(leaves.Item(k), tops.Item(k));
        if (key::hasRangeMark(question)) question = text::Mid(question, kMarkLength + 1);
        if (chain.Exists(question)) result = chain.Item(question);
    });
    return result;
}

void DeppCopyElements(const DeviceRef& selector, SelectorMap& map)
{
    Procedure(cls::AddToPipeClass, "Sub DeppCopyElements").run([&] {
        const auto elements = must(selector).OwnElements();
        for (int i = 1; i <= elements->Count(); ++i) {
            const auto element = asDevice(elements->Item(i));
            const auto name = must(element).Name();
            if (!map.Exists(name)) map.Add(name, element);
            DeppCopyElements(element, map);
        }
    });
}

void CheckMinMaxMoved(std::int16_t tab, ColumnOrders& orders, IQGrid& grid)
{
    Procedure(cls::AddToPipeClass, "Sub CheckMinMaxMoved").run([&] {
        const auto k = key::tabKey(tab);
        const auto& old = orders.Item(k);
        auto& query = must(grid.Query());
        const auto columns = query.Top()->Columns();
        while (repairFirstTornPair(*columns, old)) query.Refresh();
        grid.Refresh();

        ColumnOrder now;
        for (int i = 1; i <= columns->Count(); ++i) {
            const auto column = columns->Item(i);
            now.Add(column->Key(), column);
        }
        if (orders.Exists(k)) orders.Remove(k);
        orders.Add(k, std::move(now));
    });
}

void WriteSelectors(std::int16_t tab, IQGrid& grid, DeviceRef& leaf, const DeviceRef& top, const DeviceRef& pipeClass,
                    ColumnOrders& orders)
{
    Procedure(cls::AddToPipeClass, "Sub WriteSelectors").run([&] {
        CheckMinMaxMoved(tab, orders, grid);
        const auto& sele = diagnostics::names().Sele();
        const auto queryTop = must(grid.Query()).Top();
        const auto rows = queryTop->Objects();
        const auto columns = queryTop->Columns();

        DeviceRef cur = top;
        auto base = must(top).CDevice();
        if (must(base).ReadOnly()) return;
        base = deepestBase(base);

        bool changed = false;
        bool skip = false;
        SelectorMap spare;
        DeppCopyElements(top, spare);

        const int count = columns->Count();
        for (int i = 1; i <= count; ++i) {
            if (skip) {
                skip = false;
                continue;
            }
            const auto column = columns->Item(i);
            if (!key::isQuestion(column->Key())) continue;
            const auto [element, question, rangePair] = questionOfColumn(*column);
            // The pair's other column counts as the same question.
            skip = rangePair;

            auto sel = asDevice(cur->Elements()->Item(element));
            if (!sel) {
                sel = selectorAboveLeaf(leaf, cur, element);
                if (sel && text::InStr(element, ":") > 0) {
                    SelectorMap below;
                    DeppCopyElements(sel, below);
                    spare = std::move(below);
                }
            }
            if (sel || cur->ReadOnly()) {
                if (spare.Exists(element)) spare.Remove(element);
            } else if (!spare.Exists(element)) {
                // A new selector goes between cur and all that stood below it.
                sel = asDevice(cur->OwnElements()->CreateNewWithName(element));
                sel->SetDescription(element);
                sel->SetCDevice(base);
                if (sel->SystemTemporary()) sel->MakePersistent();
                moveChildren(*cur, *sel, &element);
                changed = true;
            } else {
                sel = spare.Item(element);
                spare.Remove(element);
                if (const auto owner = asDevice(sel->Owner())) owner->OwnElements()->Detach(sel);
                if (sel->SystemTemporary()) sel->MakePersistent();
                moveChildren(*cur, *sel, nullptr);
                cur->OwnElements()->AddObject(sel);
                changed = true;
            }

            SetAttribute(must(must(sel).Owner()).Spec(sele.NextQuestion()), question, changed);
            const auto name = sel->Name();
            if (text::InStr(name, "PBOR") > 0)
                SetAttribute(sel->Spec(sele.SelectorType()), std::string(kPipeBoreType), changed);
            else if (text::InStr(name, "BDIA") > 0)
                SetAttribute(sel->Spec(sele.SelectorType()), std::string(kBoreDiameterType), changed);
            cur = sel;
            if (i == count) SetAttribute(cur->Spec(sele.NextQuestion()), "", changed);
        }

        // The last selector has no children.
        if (cur->OwnElements()->Count() >= 1) {
            const auto below = cur->Elements();
            std::vector<ObjectRef> doomed;
            for (int i = 1; i <= below->Count(); ++i) doomed.push_back(below->Item(i));
            for (const auto& element : doomed) deleteUnlessDeleted(element);
        }
        SetAttribute(cur->Spec(sele.NextQuestion()), "", changed);
        const auto unused = spare.Items();
        for (auto it = unused.rbegin(); it != unused.rend(); ++it) deleteUnlessDeleted(*it);
        if (!changed) return;

        for (int i = 1; i <= must(rows).Count(); ++i) {
            CollectionRef questionSpecs;
            SpecMap boreSpecs;
            DeviceRef topSelector;
            SpecRef shopSpec;
            SetQuestion(pipeClass, asDevice(rows->Item(i)), questionSpecs, boreSpecs, topSelector, shopSpec, leaf,
                        false);
        }
    });
}

}  // namespace pipespec::addtopipeclass
