#include "selectors/SciptCallLib.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "selectors/Selectors.h"

namespace pipespec::addtopipeclass {

CollectionRef SciptCallLib::ReadQuestions(const ObjectRef& PCOM, const ObjectRef& PipeSpecCDev) const
{
    CollectionRef QuestionSpecs;
    diagnostics::Procedure(cls::AddToPipeClass, "Function ReadQuestions").run([&] {
        SpecMap BoreSpecs;
        DeviceRef TopSelector;
        SpecRef ShopSpec;
        DeviceRef LeafSelector;
        // The pipe class comes second here and first in the walk.
        SetQuestion(asDevice(PipeSpecCDev), asDevice(PCOM), QuestionSpecs, BoreSpecs, TopSelector, ShopSpec,
                    LeafSelector, false);
    });
    return QuestionSpecs;
}

void SciptCallLib::EditSelectorTree(const ObjectRef&) const {}

}  // namespace pipespec::addtopipeclass
