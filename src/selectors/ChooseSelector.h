#pragma once

// The choice of the next selector where a component's answer does not lead
// to one child: what the dialog offers and proposes, and how the answer it
// gives back is turned into the chosen child. The dialog itself (a modal form
// with the selector tree) is behind IChooseSelectorView, so the engine runs
// the same with a window or with a script.

#include "objectmodel/ObjectModel.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pipespec::addtopipeclass {

// What the dialog puts before the engineer.
struct SelectorChoice {
    DeviceRef selector;   // whose children are offered
    DeviceRef component;  // shown, not editable
    DeviceRef treeRoot;   // the top selector
    std::string sentence;
    std::vector<std::string> answers;  // one per child, in child order
    std::string proposal;
    DeviceRef proposedChild;  // selected in the tree
};

// The modal dialog. Gives back the answer taken: the list's text at OK,
// empty at Cancel, and the proposal when it is closed by its own close button.
class IChooseSelectorView {
public:
    virtual ~IChooseSelectorView() = default;
    virtual std::string ShowModal(const SelectorChoice& choice) = 0;
};

// The one dialog of the process, a host service (diagnostics/ServiceRegistry.h)
// whose default is a script that takes the proposals.
IChooseSelectorView& chooseSelectorView();
std::shared_ptr<IChooseSelectorView> setChooseSelectorView(std::shared_ptr<IChooseSelectorView> replacement);

// Offers the children of Selector for the component SCOM and gives the chosen
// child, empty when the engineer cancelled. Answer receives the answer taken.
// A selector without a default answer proposes the answer taken last in the
// same database.
// Question is the attribute name without chapter; it is cut, with its ":",
// out of the names of the children and out of the default answer.
DeviceRef ChooseSelector(const DeviceRef& Selector, const DeviceRef& SCOM, const std::string& Question,
                         std::string& Answer, const DeviceRef& TreeRoot);

// The tree of the dialog shows selectors made from the same base object as
// the offered selector, and nothing else.
bool ShownInSelectorTree(const ObjectRef& object, const DeviceRef& offered);
// The list text that a selection in the tree stands for; nothing when it is
// not a direct child of the offered selector, and OK cannot be pressed.
std::optional<std::string> AnswerOfTreeSelection(const ObjectRef& selected, const DeviceRef& offered);

// The dialog run by a script: each ShowModal takes the next scripted reply;
// with the script used up, the dialog is closed and the proposal taken.
class ScriptedChooseSelector final : public IChooseSelectorView {
public:
    void choose(std::string answer) { script_.emplace_back(std::move(answer)); }
    void cancel() { script_.emplace_back(std::string()); }
    void close() { script_.emplace_back(std::nullopt); }

    std::string ShowModal(const SelectorChoice& choice) override;
    const std::vector<SelectorChoice>& shown() const noexcept { return shown_; }

private:
    std::deque<std::optional<std::string>> script_;
    std::vector<SelectorChoice> shown_;
};

}  // namespace pipespec::addtopipeclass
