// The walk down of a component through the selector tree of its pipe class,
// and the link from the component to the leaf it reached.

#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/Text.h"
#include "selectors/ChooseSelector.h"
#include "selectors/QuestionWalk.h"

#include <utility>

namespace pipespec::addtopipeclass {

namespace {
constexpr std::string_view kPipeBoreType = "2";

// Leaves the attribute name of a question: everything behind its first point.
void dropChapter(std::string& question)
{
    if (const auto dot = question.find('.'); dot != std::string::npos) question.erase(0, dot + 1);
}
}  // namespace

std::vector<std::string> splitAtPoints(std::string_view question)
{
    std::vector<std::string> parts;
    for (int start = 1;;) {
        const int dot = text::InStr(start, question, ".");
        parts.push_back(dot == 0 ? text::Mid(question, start) : text::Mid(question, start, dot - start));
        if (dot == 0) return parts;
        start = dot + 1;
    }
}

void SetQuestion(const DeviceRef& CDevPipeClass, const DeviceRef& CDevPC, CollectionRef& QuestionSpecs,
                 SpecMap& BoreSpecs, DeviceRef& TopSelector, SpecRef& ShopSpec, DeviceRef& LeafSelector,
                 bool DeleteOnCancel)
{
    QuestionWalk(CDevPipeClass, CDevPC, QuestionSpecs, BoreSpecs, TopSelector, ShopSpec, LeafSelector, DeleteOnCancel)
        .run();
}

QuestionWalk::QuestionWalk(const DeviceRef& pipeClass, const DeviceRef& component, CollectionRef& questionSpecs,
                           SpecMap& boreSpecs, DeviceRef& topSelector, SpecRef& shopSpec, DeviceRef& leafSelector,
                           bool deleteOnCancel)
    : pipeClass_(pipeClass),
      component_(component),
      questionSpecs_(questionSpecs),
      boreSpecs_(boreSpecs),
      topSelector_(topSelector),
      shopSpec_(shopSpec),
      leafSelector_(leafSelector),
      deleteOnCancel_(deleteOnCancel)
{
}

void QuestionWalk::run()
{
    if (start() == Walk::Leave || findTopSelector() == Walk::Leave || walkDown() == Walk::Leave ||
        linkToLeaf() == Walk::Leave)
        return;
    walkUp();
}

QuestionWalk::Walk QuestionWalk::start()
{
    t_.enter();
    // The database makes the helper and the collection. Without an object
    // of a database there is nothing to walk, and the leave below says why.
    const auto& anyObject = pipeClass_ ? pipeClass_ : component_;
    WorksetRef workset;
    if (anyObject) p_.step([&] { workset = anyObject->Workset(); });
    if (workset) {
        p_.step([&] {
            helper_ = workset->NewPipeSpecHelper(diagnostics::tools().Names());
            helper_->SetPipeClass(pipeClass_);
        });
        if (!questionSpecs_) p_.step([&] { questionSpecs_ = workset->NewCollection(); });
    }
    boreSpecs_ = SpecMap();
    if (!component_) {
        t_.leaveText("CDevPC Is Nothing");
        return Walk::Leave;
    }
    if (!pipeClass_) {
        t_.leaveText("CDevPipeClass Is Nothing");
        return Walk::Leave;
    }

    const auto& names = diagnostics::names();
    p_.step([&] { isPDMS_ = pipeClass_->Spec(names.PDMS()) != nullptr; });
    if (isPDMS_) {
        chapter_ = names.PDMS();
        p_.step([&] {
            if (const auto vstd = component_->Spec(names.Pipe().VSTD())) answer_ = vstd->ValueText();
        });
    } else {
        chapter_ = names.SelectorChapter();
        p_.step([&] {
            if (const auto code = component_->Spec(names.GD().VFCD())) answer_ = code->ValueText();
        });
        // A code that is no number is reported, and the answer stays the code.
        if (!answer_.empty())
            p_.step([&] {
                answer_ =
                    must(helper_).GenericTypeOfFunctionCode(moduleState(*pipeClass_).m_MenuCDev, text::CLng(answer_));
            });
    }
    if (answer_.empty()) {
        t_.leaveText("VFCDValue = vbNullString");
        return Walk::Leave;
    }
    return Walk::Continue;
}

QuestionWalk::Walk QuestionWalk::findTopSelector()
{
    const auto& names = diagnostics::names();
    p_.step([&] { root_ = asDevice(pipeClass_->Elements()->Item(names.SelectorRoot())); });
    if (!root_) {
        t_.leave();
        return Walk::Leave;
    }

    DeviceRef cur;
    p_.step([&] {
        const auto children = root_->Elements();
        for (int i = 1; i <= children->Count() && !cur; ++i) {
            const auto child = children->Item(i);
            const auto childAnswer = child->Spec(names.Sele().Answer());
            if (childAnswer && childAnswer->ValueText() == answer_) cur = asDevice(child);
        }
    });
    if (!cur) makeTopSelector(cur);
    if (!cur) {
        t_.leaveText("TopSelector Is Nothing");
        return Walk::Leave;
    }
    topSelector_ = cur;
    return Walk::Continue;
}

void QuestionWalk::makeTopSelector(DeviceRef& cur)
{
    const auto& names = diagnostics::names();
    const auto& sele = names.Sele();
    t_.text("Selector with answer \"" + answer_ + "\" not found ");
    const auto base = GetSelectorBaseCDev(root_);
    bool readOnly = true;
    p_.step([&] { readOnly = root_->ReadOnly(); });
    if (readOnly) return;

    p_.step([&] { t_.text("(1) creating new with name " + answer_ + " under " + root_->SystemFullName()); });
    p_.step([&] { cur = asDevice(root_->OwnElements()->CreateNewWithName(answer_)); });
    p_.step([&] { must(cur).SetCDevice(base); });
    p_.step([&] {
        if (const auto answerSpec = must(cur).Spec(sele.Answer())) {
            answerSpec->MakePersistent();
            answerSpec->SetValue(answer_);
        }
    });
    SpecRef question;
    p_.step([&] {
        question = must(cur).Spec(sele.NextQuestion());
        if (question) question->MakePersistent();
    });
    // On a PDMS class the new top selector stays a leaf with an empty question.
    bool pdmsClass = true;
    p_.step([&] { pdmsClass = pipeClass_->Spec(names.PDMS()) != nullptr; });
    if (!question || pdmsClass) return;

    const auto& defaultQuestion = names.GD().DefaultQuestion();
    p_.step([&] { question->SetValue(defaultQuestion); });
    p_.step([&] { t_.text("(2) creating new with name " + defaultQuestion + " under " + cur->SystemFullName()); });
    p_.step([&] {
        const auto second = asDevice(cur->OwnElements()->CreateNewWithName(defaultQuestion));
        must(second).SetCDevice(base);
    });
    p_.step([&] {
        if (const auto type = cur->Spec(sele.SelectorType())) {
            type->MakePersistent();
            type->SetValue(kPipeBoreType);
        }
    });
}

QuestionWalk::Walk QuestionWalk::walkDown()
{
    const auto& sele = diagnostics::names().Sele();
    passed_ = {pipeClass_, root_};
    DeviceRef cur = topSelector_;
    for (;;) {
        passed_.push_back(cur);
        SpecRef question;
        p_.step([&] { question = must(cur).Spec(nextQuestion_.in(sele)); });
        if (!question) return Walk::Continue;
        p_.step([&] { q_ = question->DisplayValue(); });
        last_ = cur;
        CollectionRef children;
        p_.step([&] { children = cur->Elements(); });
        if (!children || children->Count() == 0) return Walk::Continue;

        if (children->Count() < 2) {
            // A single child is followed without asking the component anything.
            dropChapter(q_);
            cur = asDevice(children->Item(1));
        } else if (chooseAmongChildren(cur, children) == Walk::Leave) {
            return Walk::Leave;
        }
        t_.value("TopSelector", cur);
        if (q_.empty()) continue;
        // Names of the form ATTR:ANSWER begin with the question and stand.
        p_.step([&] {
            if (!cur->Name().starts_with(q_)) {
                cur->SetName(q_);
                cur->SetDescription(q_);
            }
        });
    }
}

QuestionWalk::Walk QuestionWalk::chooseAmongChildren(DeviceRef& cur, const CollectionRef& children)
{
    SpecRef qSpec;
    p_.step([&] { qSpec = component_->Spec(q_); });
    if (!qSpec)
        p_.step([&] {
            putInChapter();
            CreateQuestionSpec(splitAtPoints(q_), component_, qSpec, boxSpec_);
        });
    dropChapter(q_);

    if (!qSpec) {
        // The component cannot answer: the engineer chooses, and a cancel costs the component.
        std::string unused;
        cur = ChooseSelector(cur, component_, q_, unused, topSelector_);
        if (cur) return Walk::Continue;
        p_.step([&] { component_->Delete(); });
        t_.leaveText("(2) TopSelector Is Nothing");
        return Walk::Leave;
    }

    DeviceRef child;
    p_.step([&] { child = asDevice(children->Item(q_ + ":" + qSpec->DisplayValue())); });
    if (child) {
        cur = std::move(child);
        return Walk::Continue;
    }
    std::string chosen;
    cur = ChooseSelector(cur, component_, q_, chosen, topSelector_);
    if (!cur) {
        if (deleteOnCancel_) p_.step([&] { component_->Delete(); });
        t_.leaveText("(1) TopSelector Is Nothing");
        return Walk::Leave;
    }
    // The component takes over the answer the engineer chose.
    p_.step([&] {
        if (!qSpec->IsLocked(0) && chosen != qSpec->Value()) qSpec->SetValue(chosen);
    });
    return Walk::Continue;
}

void QuestionWalk::putInChapter()
{
    if (q_.find('.') == std::string::npos) q_ = chapter_ + "." + q_;
}

SpecRef QuestionWalk::findOrMakeLink()
{
    const auto& names = diagnostics::names();
    SpecRef link;
    p_.step([&] { link = component_->Spec(names.PDMSNames().Selector()); });
    if (!link) p_.step([&] { link = component_->Spec(chapter_ + "." + names.Selector()); });
    if (link) return link;

    bool current = false;
    p_.step([&] { current = component_->Project() == must(component_->Workset()).CurrentProject(); });
    if (!current) return link;
    p_.step([&] {
        link = component_->Spec(chapter_);
        if (link) makePersistent(*link);
    });
    // A chapter that stays temporary serves as the link attribute itself.
    p_.step([&] {
        if (!link || link->SystemTemporary()) return;
        if (link->ReadOnly()) {
            link = nullptr;
            return;
        }
        t_.text("creating new spec with name " + names.Selector() + " at " + link->SystemFullName());
        link = asSpec(link->OwnSpecifications()->CreateNewWithName(names.Selector()));
    });
    return link;
}

QuestionWalk::Walk QuestionWalk::linkToLeaf()
{
    const auto link = findOrMakeLink();
    if (!link) {
        t_.leave();
        return Walk::Leave;
    }
    p_.step([&] {
        if (same(link->LinkObject(), last_)) return;
        makePersistent(*link);
        if (link->SystemTemporary()) return;
        makePersistent(must(last_));
        if (!last_->SystemTemporary() && !link->IsLocked(0)) link->SetLinkObject(last_);
    });
    leafSelector_ = last_;
    return Walk::Continue;
}

}  // namespace pipespec::addtopipeclass
