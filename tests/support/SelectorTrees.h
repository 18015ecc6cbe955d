#pragma once

// Selector trees in a few lines: the base object selectors are made from, the
// root under a pipe class, selectors with answer and question, and a grid
// whose columns stand for the questions of one tab.

#include "platform/query/HeadlessGrid.h"
#include "support/World.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pipespec::support {

// "@40|SELBASE" of the base project with the selector attributes (type "1",
// neither a range nor a bore), installed as option 368.
DeviceRef selectorBase(const World& world);
// The selector root of a pipe class, made from `base`.
DeviceRef selectorRoot(const World& world, const DeviceRef& pipeClass, const DeviceRef& base);
// A selector under `owner` made from `base`, with its answer and question.
DeviceRef selector(const World& world, const DeviceRef& owner, const std::string& name, const std::string& answer,
                   const std::string& question, const DeviceRef& base);
// A top selector of a class for the outside design system that asks tubes of
// that answer whether they are made in the shop, with the one child "SHOP".
DeviceRef shopSelector(const World& world, const DeviceRef& root, const std::string& answer, const DeviceRef& base);

// A headless grid over the rows, with columns given as key and title.
std::unique_ptr<platform::HeadlessGrid> selectorGrid(const World& world, const std::vector<DeviceRef>& rows,
                                                     const std::vector<std::pair<std::string, std::string>>& columns);
// The keys of a grid's columns, left to right.
std::vector<std::string> columnKeys(const IQGrid& grid);
// The names of the own children of a device, in order.
std::vector<std::string> childNames(const DeviceRef& device);

}  // namespace pipespec::support
