#pragma once

// The class scripts make and call: the questions of a component without any
// control being open.

#include "objectmodel/ObjectModel.h"

namespace pipespec::addtopipeclass {

class SciptCallLib {
public:
    // The component's attribute for each question, from the leaf upward. Not a
    // pure read: the walk may make selectors, attributes and the link, and may
    // ask the engineer to choose a selector.
    CollectionRef ReadQuestions(const ObjectRef& PCOM, const ObjectRef& PipeSpecCDev) const;
    // Kept for scripts that call it; it returns at once.
    void EditSelectorTree(const ObjectRef& OwnerCDevice) const;
};

}  // namespace pipespec::addtopipeclass
