#pragma once

#include "objectmodel/ObjectModel.h"

namespace pipespec::addtopipeclass {

// The nominal-diameter range of one element. A range is the list of nominal
// diameters the element is offered in: the entries of the pipe class's range
// list (the name table's list attribute, one indexed value per diameter) that
// lie between the element's lower and upper bound. An empty bound leaves that
// side open. The range is kept in the element's own list attribute.
class PCOMRangeControl {
public:
    // Prepares a new element's range from its pipe class, without asking
    // anyone. A range the element already has is left as it is.
    void InitNDRange(const DeviceRef& element, const DeviceRef& pipeClass) const;
};

// The instance element creation uses; made on first use, kept for the process.
const PCOMRangeControl& sharedPCOMRange();

}  // namespace pipespec::addtopipeclass
