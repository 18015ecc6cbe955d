#pragma once

// The selector engine of AddToPipeClass: the question-and-answer tree under a
// pipe class, the grid columns that stand for its questions, and the walk of
// a component through it. Like the rest of the module, no routine lets a
// failure escape; results must be tested for emptiness.

#include "elements/AddToPipeClass.h"
#include "objectmodel/Grid.h"

#include <cstdint>
#include <string>
#include <vector>

namespace pipespec::addtopipeclass {

// The tab maps of a selector grid, keyed by tabKey(): top and leaf selectors.
using SelectorMap = KeyedMap<DeviceRef>;
// A grid's column order, by column Key; only the keys and their order count.
using ColumnOrder = KeyedMap<QueryColumnRef>;
using ColumnOrders = KeyedMap<ColumnOrder>;
// Bore questions by their text, with the component's attribute that answers them.
using SpecMap = KeyedMap<SpecRef>;

// The base object new selectors are made from: the selector root's own link,
// the pipe class's link, or the project's selector option.
DeviceRef GetSelectorBaseCDev(const DeviceRef& selector);

// The selector a grid column stands for, found on the chain of the tab's leaf
// selector; a column that is no question stands for the top selector.
DeviceRef SelectorCDeviceFromColumnDef(const QueryColumnRef& column, std::int16_t tab, const SelectorMap& tops,
                                       const SelectorMap& leaves);

// Makes the tree under the top selector follow the grid's column order.
// leaf receives the leaf selector of the last component walked again.
void WriteSelectors(std::int16_t tab, IQGrid& grid, DeviceRef& leaf, const DeviceRef& top, const DeviceRef& pipeClass,
                    ColumnOrders& orders);

// Puts a torn range pair of columns together again, takes out a range column
// without partner, and records the grid's column order for the tab.
void CheckMinMaxMoved(std::int16_t tab, ColumnOrders& orders, IQGrid& grid);

// Every selector below `selector`, depth first, by name; the first met keeps a name.
void DeppCopyElements(const DeviceRef& selector, SelectorMap& map);

// Walks one component of a pipe class down its selector chain (asking the
// engineer where its answers do not decide) and back up, collecting the
// component's attribute for each question.
void SetQuestion(const DeviceRef& CDevPipeClass, const DeviceRef& CDevPC, CollectionRef& QuestionSpecs,
                 SpecMap& BoreSpecs, DeviceRef& TopSelector, SpecRef& ShopSpec, DeviceRef& LeafSelector,
                 bool DeleteOnCancel);

// A new question attribute of the component, copied from the chapter's model
// attribute. parts: chapter and attribute name.
void CreateQuestionSpec(const std::vector<std::string>& parts, const DeviceRef& CDevPC, SpecRef& newSpec,
                        SpecRef& boxSpec);

}  // namespace pipespec::addtopipeclass
