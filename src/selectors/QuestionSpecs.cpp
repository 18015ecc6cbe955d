// The walk up from the leaf a component reached: for each question the
// component's attribute that answers it, made where missing, marked as used
// in the pipe spec and set up for a single answer or a range.

#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/Text.h"
#include "selectors/Chapters.h"
#include "selectors/ColumnKeys.h"
#include "selectors/QuestionWalk.h"

#include <algorithm>
#include <array>

namespace pipespec::addtopipeclass {

using diagnostics::Procedure;
using diagnostics::Trace;

namespace {
constexpr std::string_view kInSpec = " (in spec)";
// What marks a description as taken into the spec, in any case.
constexpr std::string_view kInSpecMark = "IN SPEC";
// A question ending in this, in any case, asks for the shop attribute.
constexpr std::string_view kShop = "SHOP";
constexpr std::string_view kEditControl = "QuorlSUIEdit.SUIEdit";
constexpr std::string_view kBox = "BOX14";
constexpr std::string_view kText = "A";
constexpr std::string_view kNumber = "N";
constexpr long kSingleAnswer = -9999;
constexpr long kRangeAnswer = 2;
constexpr long kAcceptedRange = 1;
constexpr std::array<std::string_view, 4> kOtherClassBores{"VC11", "VC21", "VC31", "VC41"};

char asciiUpper(char c) { return 'a' <= c && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// Whether `text` holds `upperCase` with its letters in any case; ASCII letters only.
bool containsInAnyCase(std::string_view text, std::string_view upperCase)
{
    const auto sameLetter = [](char a, char b) { return asciiUpper(a) == b; };
    return std::search(text.begin(), text.end(), upperCase.begin(), upperCase.end(), sameLetter) != text.end();
}

// Whether `text` ends in `upperCase` with its letters in any case; ASCII letters only.
bool endsInAnyCase(std::string_view text, std::string_view upperCase)
{
    return text.size() >= upperCase.size() && containsInAnyCase(text.substr(text.size() - upperCase.size()), upperCase);
}

bool isOtherClassBore(std::string_view question)
{
    return std::any_of(kOtherClassBores.begin(), kOtherClassBores.end(),
                       [question](std::string_view bore) { return question.find(bore) != std::string_view::npos; });
}

std::string joinWithPoints(const std::vector<std::string>& parts)
{
    std::string joined;
    for (const auto& part : parts) joined += (joined.empty() ? "" : ".") + part;
    return joined;
}

// Element `index` (from 0) of a split question; missing: error 9.
const std::string& partAt(const std::vector<std::string>& parts, std::size_t index)
{
    if (index >= parts.size()) throw PlatformError(err::SubscriptOutOfRange, "Subscript out of range");
    return parts[index];
}

bool inCurrentProject(const IDevice& device) { return device.Project() == must(device.Workset()).CurrentProject(); }

// Copies the chapter's model attribute as a new question attribute. Without
// a writable chapter or a model nothing is made.
void makeQuestionSpec(const std::vector<std::string>& parts, const DeviceRef& CDevPC, SpecRef& newSpec,
                      SpecRef& boxSpec)
{
    const auto& names = diagnostics::names();
    const auto chapterSpec = CDevPC->Spec(partAt(parts, 0));
    if (!chapterSpec) return;
    makePersistent(*chapterSpec);
    if (chapterSpec->SystemTemporary() || chapterSpec->ReadOnly()) return;

    auto model = CDevPC->Spec(chapterSpec->Name() + "." + names.VSTD());
    if (!boxSpec) boxSpec = chapterSpec->Spec(kBox);
    if (!model) model = CDevPC->Spec(chapterSpec->Name() + "." + names.QuestionTemplate2());
    if (!model) return;

    newSpec = asSpec(model->Copy());
    newSpec->SetValueType(kText);
    newSpec->SetControlType(kEditControl);
    newSpec->SetName(partAt(parts, 1));
    chapterSpec->OwnSpecifications()->AddObject(newSpec);
    newSpec->SetValue("");
    newSpec->SetDescription(parts[1] + std::string(kInSpec));
    CalcControlProperties(newSpec, boxSpec, model);
}
}  // namespace

void CreateQuestionSpec(const std::vector<std::string>& parts, const DeviceRef& CDevPC, SpecRef& newSpec,
                        SpecRef& boxSpec)
{
    const Trace trace(cls::AddToPipeClass, "CreateQuestionSpec");
    trace.enter();
    Procedure(cls::AddToPipeClass, "Sub CreateQuestionSpec").run([&] {
        if (!inCurrentProject(must(CDevPC))) {
            trace.leaveText("not current project");
            return;
        }
        makeQuestionSpec(parts, CDevPC, newSpec, boxSpec);
        trace.leave();
    });
}

void QuestionWalk::walkUp()
{
    const auto& sele = diagnostics::names().Sele();
    // The climb ends at the owner of the selector root, which the walk up leaves where it is.
    const auto end = root_ ? root_->Owner() : nullptr;
    bool rangeAnswer = false;
    bool shopPending = false;
    for (;;) {
        if (!last_) {
            t_.leave();
            return;
        }
        // Without a question attribute q keeps the text of the selector before.
        p_.step([&] { q_ = must(last_->Spec(nextQuestion_.in(sele))).ValueText(); });
        if (endsInAnyCase(q_, kShop)) shopPending = true;

        if (!q_.empty()) {
            if (isPDMS_ && columnkey::isBoreText(q_)) {
                answerBoreQuestionOfPdmsClass();
                recordBoreQuestion();
            } else if (!isPDMS_ && isOtherClassBore(q_)) {
                p_.step([&] {
                    putInChapter();
                    spec_ = component_->Spec(q_);
                });
                recordBoreQuestion();
            } else {
                answerPlainQuestion(shopPending, rangeAnswer);
                setAnswerForm(rangeAnswer);
            }
        }

        // The type of a selector decides the answer form of its owner's question.
        rangeAnswer = false;
        p_.step([&] {
            const auto type = last_->Spec(selectorType_.in(sele));
            if (type && text::CDbl(type->Value()) == 0) rangeAnswer = true;
        });
        last_ = ownerOf(*last_);
        if (same(last_, end)) {
            t_.leave();
            return;
        }
    }
}

DeviceRef QuestionWalk::ownerOf(const IDevice& selector) const
{
    const auto owner = selector.Owner();
    const auto isOwner = [&owner](const DeviceRef& device) {
        return device && static_cast<const IBaseObject*>(device.get()) == owner.get();
    };
    const auto passed = std::find_if(passed_.rbegin(), passed_.rend(), isOwner);
    return passed != passed_.rend() ? *passed : asDevice(owner);
}

void QuestionWalk::answerBoreQuestionOfPdmsClass()
{
    const auto& diameter = diagnostics::names().Connection().NominalDiameter();
    std::string connector;
    p_.step([&] { connector = text::InStr(q_, "BDIA") > 0 ? "0" : text::Right(text::Trim(q_), 1); });
    if (!text::IsNumeric(connector)) return;
    p_.step([&] {
        if (text::CLng(connector) < 2) {
            spec_ = component_->Spec(diameter.First());
            return;
        }
        spec_ = component_->Spec(diameter.Second());
        if (!spec_) findBoreSpecOfSecondConnector();
    });
}

// Another diameter attribute of the connection chapter on the same value
// list; failing that, the bore attribute is made under the question's name.
void QuestionWalk::findBoreSpecOfSecondConnector()
{
    const auto& names = diagnostics::names();
    SpecRef group;
    p_.step([&] {
        spec_ = component_->Spec(names.Connection().NominalDiameter().First());
        group = component_->Spec(names.Connection().ConnectionChapter());
    });
    bool found = false;
    p_.step([&] {
        const auto& first = must(spec_);
        const auto members = must(group).Specifications();
        for (int i = 1; i <= members->Count() && !found; ++i) {
            const auto member = asSpec(members->Item(i));
            if (member->SystemFullName() != first.SystemFullName() &&
                same(member->StandardTable(), first.StandardTable())) {
                spec_ = member;
                found = true;
            }
        }
    });
    if (found) return;
    p_.step([&] {
        spec_ = nullptr;
        q_ = chapter_ + "." + q_;
        CreateQuestionSpec(splitAtPoints(q_), component_, spec_, boxSpec_);
    });
}

void QuestionWalk::recordBoreQuestion()
{
    if (!spec_) return;
    p_.step([&] { describeFromChild(); });
    p_.step([&] { questionSpecs_->Add(spec_); });
    p_.step([&] { boreSpecs_.Add(q_, spec_); });
}

void QuestionWalk::answerPlainQuestion(bool& shopPending, bool rangeAnswer)
{
    p_.step([&] { putInChapter(); });
    p_.step([&] { spec_ = component_->Spec(q_); });
    if (!spec_ && rangeAnswer) p_.step([&] { findStoredRangePair(); });
    if (!spec_) p_.step([&] { CreateQuestionSpec(splitAtPoints(q_), component_, spec_, boxSpec_); });
    p_.step([&] {
        if (!spec_ || spec_->SystemTemporary() || spec_->ReadOnly()) return;
        if (!containsInAnyCase(spec_->Description(), kInSpecMark))
            spec_->SetDescription(spec_->Description() + std::string(kInSpec));
    });
    // A question on the root itself gives no result.
    if (!spec_ || same(last_, root_)) return;
    p_.step([&] { describeFromChild(); });
    p_.step([&] { questionSpecs_->Add(spec_); });
    if (shopPending) {
        shopSpec_ = spec_;
        shopPending = false;
    }
}

// A range stored as two attributes "MINATTR" and "MAXATTR". The name part is
// not restored between the two asks, so the second reads "MAXMINATTR": the
// first attribute counts only if one of that doubled name exists too.
void QuestionWalk::findStoredRangePair()
{
    auto parts = splitAtPoints(q_);
    auto& attribute = parts.back();
    attribute = "MIN" + attribute;
    spec_ = component_->Spec(joinWithPoints(parts));
    if (!spec_) return;
    attribute = "MAX" + attribute;
    if (!component_->Spec(joinWithPoints(parts))) spec_ = nullptr;
}

// Only plain questions come here: a bore attribute keeps its form.
void QuestionWalk::setAnswerForm(bool rangeAnswer)
{
    if (!spec_) return;
    bool writable = false;
    p_.step([&] { writable = makePersistent(*spec_) && !spec_->ReadOnly(); });
    if (!writable) return;
    if (!rangeAnswer) {
        p_.step([&] {
            if (spec_->AnswerMode() != kSingleAnswer) spec_->SetAnswerMode(kSingleAnswer);
        });
        return;
    }
    // Both ends of a new range take the value the attribute has now.
    p_.step([&] {
        const auto mode = spec_->AnswerMode();
        if (mode == kRangeAnswer || mode == kAcceptedRange) return;
        spec_->SetAnswerMode(kRangeAnswer);
        spec_->SetXValue(0, spec_->Value());
        spec_->SetXValue(1, spec_->Value());
    });
    p_.step([&] {
        const auto type = spec_->ValueType();
        if (type != kText && type != kNumber) spec_->SetValueType(kText);
    });
}

// An attribute without description takes that of the child selector named
// like it; an attribute's own description is never overwritten.
void QuestionWalk::describeFromChild()
{
    const auto child = last_->Elements()->Item(spec_->Name());
    if (!child || !spec_->Description().empty()) return;
    const auto description = child->Description() + std::string(kInSpec);
    if (!spec_->SystemTemporary()) {
        spec_->SetDescription(description);
        return;
    }
    const auto origin = spec_->InheritanceOrigin();
    if (origin && origin->Description().empty()) origin->SetDescription(description);
}

}  // namespace pipespec::addtopipeclass
