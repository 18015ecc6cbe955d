#pragma once

// One run of SetQuestion: the walk down from the component's top selector to
// a leaf, the link from the component to that leaf, and the walk up that
// gathers the component's attribute for each question. Every statement group
// reports its failure under "Sub SetQuestion" and the run goes on with the
// next, with whatever the failed one left unset.

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "objectmodel/NameTableInterface.h"
#include "selectors/Selectors.h"

#include <string>
#include <string_view>
#include <vector>

namespace pipespec::addtopipeclass {

class QuestionWalk {
public:
    QuestionWalk(const DeviceRef& pipeClass, const DeviceRef& component, CollectionRef& questionSpecs,
                 SpecMap& boreSpecs, DeviceRef& topSelector, SpecRef& shopSpec, DeviceRef& leafSelector,
                 bool deleteOnCancel);

    void run();

private:
    enum class Walk { Continue, Leave };

    // A leaf of the name table that the walk asks of every selector it
    // passes, looked up once a walk. A failed look-up keeps nothing, so that
    // it fails again where it is asked next, as each ask did on its own.
    class LeafOnce {
    public:
        using Leaf = const std::string& (INameTable::*)() const;

        explicit LeafOnce(Leaf leaf) noexcept : leaf_(leaf) {}

        const std::string& in(const INameTable& node)
        {
            if (!text_) text_ = &(node.*leaf_)();
            return *text_;
        }

    private:
        Leaf leaf_;
        const std::string* text_ = nullptr;
    };

    Walk start();
    Walk findTopSelector();
    void makeTopSelector(DeviceRef& cur);
    Walk walkDown();
    // One step down at a selector with several children; Leave when the engineer cancelled.
    Walk chooseAmongChildren(DeviceRef& cur, const CollectionRef& children);
    Walk linkToLeaf();
    SpecRef findOrMakeLink();
    // A question without a chapter is one of the walk's chapter.
    void putInChapter();

    void walkUp();
    // The owner of a selector as a device: on the walk up, one of the devices
    // the walk came down through, so that its type need not be asked again.
    DeviceRef ownerOf(const IDevice& selector) const;
    void answerBoreQuestionOfPdmsClass();
    void findBoreSpecOfSecondConnector();
    void recordBoreQuestion();
    void answerPlainQuestion(bool& shopPending, bool rangeAnswer);
    void findStoredRangePair();
    void setAnswerForm(bool rangeAnswer);
    void describeFromChild();

    const DeviceRef& pipeClass_;
    const DeviceRef& component_;
    CollectionRef& questionSpecs_;
    SpecMap& boreSpecs_;
    DeviceRef& topSelector_;
    SpecRef& shopSpec_;
    DeviceRef& leafSelector_;
    const bool deleteOnCancel_;

    diagnostics::Procedure p_{cls::AddToPipeClass, "Sub SetQuestion"};
    diagnostics::Trace t_{cls::AddToPipeClass, "SetQuestion"};
    LeafOnce nextQuestion_{&INameTable::NextQuestion};
    LeafOnce selectorType_{&INameTable::SelectorType};
    std::shared_ptr<IPipeSpecHelper> helper_;
    bool isPDMS_ = false;
    std::string chapter_;
    std::string answer_;
    DeviceRef root_;
    // The pipe class, the selector root and every selector the walk stepped
    // to on its way down; the walk up meets them again as owners.
    std::vector<DeviceRef> passed_;
    DeviceRef last_;
    std::string q_;
    SpecRef boxSpec_;
    // The attribute of the present question on the way up. Not cleared from
    // one selector to the next: a bore question that finds nothing of its own
    // works with the attribute of the selector before.
    SpecRef spec_;
};

// The question split at its points: chapter first, then the attribute.
std::vector<std::string> splitAtPoints(std::string_view question);

}  // namespace pipespec::addtopipeclass
