#pragma once

#include "objectmodel/ObjectModel.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pipespec::addtopipeclass {

// The range control of the component range form, as far as element creation
// uses it: it prepares a new element's nominal-diameter range from its pipe
// class, without asking anyone. A windowed host installs its form's control;
// without one, the headless control below serves.
class IRangeControl {
public:
    virtual ~IRangeControl() = default;
    virtual void InitNDRange(const DeviceRef& element, const DeviceRef& pipeClass) = 0;
};

// The nominal-diameter range of one element. A range is the list of nominal
// diameters the element is offered in: the entries of the pipe class's range
// list (the name table's list attribute, one indexed value per diameter) that
// lie between the element's lower and upper bound. An empty bound leaves that
// side open. The range is kept in the element's own list attribute; a list it
// only inherits (from the chapter it follows) is not its range, and an own
// list made in its place shadows it.
class PCOMRangeControl final : public IRangeControl {
public:
    // A range the element already holds as its own is left as it is.
    void InitNDRange(const DeviceRef& element, const DeviceRef& pipeClass) override;
};

// The diameters of the pipe class's range list (`offered`) that lie between
// the element's bounds, in the list's order.
[[nodiscard]] std::vector<std::string> diametersWithinBounds(const IDevice& element, const ISpecification& offered);

// Sets the element's lower and upper bound (an empty one leaves that side
// open) and writes its own range anew from them; rows of the list the range
// no longer fills are emptied, as a list keeps its length. False, with
// nothing written, where the pipe class offers no list or the element has no
// name-range chapter with bounds it may write.
bool SetNDRange(const DeviceRef& element, const DeviceRef& pipeClass, std::string_view lower, std::string_view upper);

// The instance element creation uses, a host service (diagnostics/ServiceRegistry.h)
// whose default is the headless control.
IRangeControl& sharedPCOMRange();
std::shared_ptr<IRangeControl> setSharedPCOMRange(std::shared_ptr<IRangeControl> replacement);

}  // namespace pipespec::addtopipeclass
