#include "selectors/ChooseSelector.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/DatabaseState.h"
#include "objectmodel/Text.h"

namespace pipespec::addtopipeclass {

using diagnostics::Procedure;

namespace {
diagnostics::ServiceSlot<IChooseSelectorView, ScriptedChooseSelector>& viewSlot()
{
    static diagnostics::ServiceSlot<IChooseSelectorView, ScriptedChooseSelector> slot;
    return slot;
}

// The text taken at the last OK; during a choice, the proposal. It outlives
// the choice, as the dialog is one instance: a selector without a default
// answer is measured against what was chosen last. It belongs to the
// database whose selectors it names.
struct LastAnswer {
    std::string mAnswer;
};
}  // namespace

IChooseSelectorView& chooseSelectorView() { return viewSlot().get(); }

std::shared_ptr<IChooseSelectorView> setChooseSelectorView(std::shared_ptr<IChooseSelectorView> replacement)
{
    return viewSlot().exchange(std::move(replacement));
}

DeviceRef ChooseSelector(const DeviceRef& Selector, const DeviceRef& SCOM, const std::string& Question,
                         std::string& Answer, const DeviceRef& TreeRoot)
{
    DeviceRef result;
    Procedure(cls::frmChooseSelector, "Function Init").run([&] {
        SelectorChoice choice{Selector, SCOM, TreeRoot, {}, {}, {}, nullptr};
        // Plain replacement, one after the other: a selector name holding "%s2" has it replaced too.
        const auto sentence = diagnostics::utilities().Translate(msg::SelectorChainAmbiguous);
        choice.sentence = text::Replace(text::Replace(sentence, "%s1", must(Selector).Name()), "%s2", Question);

        const auto cut = Question + ":";
        const auto children = Selector->Elements();
        auto& answer = must(Selector->Workset()).State().get<LastAnswer>().mAnswer;
        if (const auto defaultAnswer = Selector->Spec(diagnostics::names().Sele().DefaultAnswer()))
            answer = text::Replace(defaultAnswer->DisplayValue(), cut, "");
        for (int i = 1; i <= children->Count(); ++i) {
            const auto child = asDevice(children->Item(i));
            auto a = text::Replace(must(child).Name(), cut, "");
            if (a == answer) choice.proposedChild = child;
            choice.answers.push_back(std::move(a));
        }
        if (!choice.proposedChild) {
            // A selector without children fails here.
            choice.proposedChild = asDevice(children->Item(1));
            answer = choice.answers.front();
        }
        choice.proposal = answer;

        answer = chooseSelectorView().ShowModal(choice);
        if (!answer.empty()) {
            result = asDevice(children->Item(answer));
            if (!result) result = asDevice(children->Item(cut + answer));
        }
        Answer = answer;
    });
    return result;
}

bool ShownInSelectorTree(const ObjectRef& object, const DeviceRef& offered)
{
    const auto device = asDevice(object);
    return device && offered && same(device->CDevice(), offered->CDevice());
}

std::optional<std::string> AnswerOfTreeSelection(const ObjectRef& selected, const DeviceRef& offered)
{
    if (!selected || !offered || !same(selected->Owner(), offered)) return std::nullopt;
    const auto name = selected->Name();
    const int colon = text::InStr(name, ":");
    return colon == 0 ? name : text::Mid(name, colon + 1);
}

std::string ScriptedChooseSelector::ShowModal(const SelectorChoice& choice)
{
    shown_.push_back(choice);
    if (script_.empty()) return choice.proposal;
    auto reply = std::move(script_.front());
    script_.pop_front();
    return reply ? *reply : choice.proposal;
}

}  // namespace pipespec::addtopipeclass
