#pragma once

#include "objectmodel/ObjectModel.h"

#include <memory>

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

// The instance element creation uses, a host service (diagnostics/ServiceRegistry.h)
// whose default is the headless control.
IRangeControl& sharedPCOMRange();
std::shared_ptr<IRangeControl> setSharedPCOMRange(std::shared_ptr<IRangeControl> replacement);

}  // namespace pipespec::addtopipeclass
