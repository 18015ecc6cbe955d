#include "elements/AddToPipeClass.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "diagnostics/Translate.h"
#include "elements/RangeControl.h"
#include "objectmodel/Options.h"
#include "objectmodel/Text.h"
#include "selectors/Chapters.h"

namespace pipespec::addtopipeclass {

using diagnostics::Procedure;
using diagnostics::Trace;

namespace {
std::string boolText(bool value) { return value ? "True" : "False"; }

DeviceRef topOfBaseChain(DeviceRef device)
{
    while (const auto base = must(device).CDevice()) device = base;
    return device;
}

// Whether an element was made from that catalogue root: a pipe class used as
// an element counts by its own base object, anything else by the top of its
// chain. Reading the function code costs far more than following the chain, so
// it is read only where one of the two candidates is the root.
bool madeFromRoot(const DeviceRef& element, const DeviceRef& root)
{
    const auto top = topOfBaseChain(element);
    const auto base = element->CDevice();
    const auto own = base ? base : element;
    if (!same(top, root) && !same(own, root)) return false;
    return same(IsPipeClass(element) ? own : top, root);
}

// The first element of the class made from the same catalogue root.
DeviceRef firstElementWithRoot(const IObjectCollection& elements, const DeviceRef& root)
{
    for (std::int16_t i = 1; i <= elements.Count(); i = text::Inc16(i)) {
        const auto element = asDevice(elements.Item(i));
        if (madeFromRoot(element, root)) return element;
    }
    return nullptr;
}

bool confirmDuplicate(const DeviceRef& existing)
{
    auto& host = diagnostics::utilities();
    const auto question = host.Translate(msg::ElementWithRootExists) + std::string(diagnostics::CrLf) + "\t" +
                          existing->SystemFullName() + std::string(diagnostics::CrLf) + std::string(diagnostics::CrLf) +
                          host.Translate(msg::AddAnyway);
    return host.MessageBox(question, mb::YesNoExclamation, host.Translate(msg::NewPipeClassElement)) != mb::AnswerNo;
}

bool inCurrentProject(const ISpecification& chapter)
{
    return chapter.Project() == must(chapter.Workset()).CurrentProject();
}

// Gives a new element its name-range chapter, following the catalogue owner's
// chapter, or the pipe class's when no owner is found. Empty when the pipe
// class has no such chapter, which is told to the user. CatalogOwner receives
// the owner that was looked for, so that later steps need not look again.
SpecRef makeNameRangeChapter(const DeviceRef& element, const DeviceRef& mPipeClass, DeviceRef& CatalogOwner,
                             const Trace& trace)
{
    const auto& name = diagnostics::names().NameRange();
    auto source = mPipeClass->Spec(name);
    if (!source) {
        auto& host = diagnostics::utilities();
        host.MessageBox(diagnostics::FillPercent1(host.Translate(msg::SpecChapterNotFound), name), mb::OkOnly,
                        host.Translate(msg::ErrorInPipeClassObject));
        return nullptr;
    }
    InitCatalogOwner(CatalogOwner, element, mPipeClass);
    trace.object("CatalogOwner", CatalogOwner);
    if (CatalogOwner) source = CatalogOwner->Spec(name);
    trace.object("CatalogNameRangeChapter", source);

    // A chapter of another project cannot be inherited from: it is copied.
    auto& sourceChapter = must(source);
    SpecRef chapter;
    if (!inCurrentProject(sourceChapter)) {
        InheritInChapter(element, name, source);
        chapter = asSpec(element->SpecsByName()->Item(name));
    } else {
        chapter = asSpec(element->SpecsByName()->CreateNewWithName(name));
    }
    must(chapter).MakePersistent();
    sourceChapter.MakePersistent();
    if (inCurrentProject(sourceChapter)) chapter->InheritFrom(source);
    return chapter;
}

// The element's name-range chapter, made or made persistent, with its minimum
// and maximum worked out; the catalogue owner when making the chapter found it.
DeviceRef prepareNameRange(const DeviceRef& element, const DeviceRef& mPipeClass, Trace& trace)
{
    const auto& names = diagnostics::names();
    DeviceRef CatalogOwner;
    auto chapter = asSpec(element->Specs()->Item(names.NameRange()));
    if (!chapter)
        chapter = makeNameRangeChapter(element, mPipeClass, CatalogOwner, trace);
    else if (chapter->SystemTemporary())
        chapter->MakePersistent();
    trace.object("NameRangeChapter", chapter);
    if (chapter) {
        trace.text("NameRangeChapter.SystemTemporary = " + boolText(chapter->SystemTemporary()));
        // Minimum, then maximum.
        chapter->RefreshSpecs();
        CalcMinMaxSpec(chapter, names.NameRangeLowerAttr(), mPipeClass);
        CalcMinMaxSpec(chapter, names.NameRangeUpperAttr(), mPipeClass);
    }
    return CatalogOwner;
}

}  // namespace

void DropCachedEntry(IGlobals& globals, const DeviceRef& pipeClass)
{
    const auto cache = globals.getOption(option::PipeClassCache).map();
    const auto key = must(pipeClass).Name();
    if (!cache || !cache->Exists(key)) return;
    cache->Remove(key);
    globals.setoption(option::PipeClassCache, cache);
}

DeviceRef NewPipeSpecElement(DeviceRef CDevObject, const DeviceRef& mPipeClass, bool RecursiveCall, bool ResetCreated,
                             std::string& groupId, bool InteractiveImportObject, const DeviceRef& presetElement)
{
    DeviceRef result;
    Trace trace(cls::AddToPipeClass, "XAddToPipeClass");
    trace.enter();
    Procedure(cls::AddToPipeClass, "AddToPipeClass").run([&] {
        if (trace.enabled()) {
            trace.object("CDevObject", CDevObject);
            trace.object("mPipeClass", mPipeClass);
            trace.object("NewPipeSpecElement", presetElement);
            trace.text("RecursiveCall = " + boolText(RecursiveCall));
            trace.text("ResetCreated = " + boolText(ResetCreated));
            trace.text("InteractiveImportObject = " + boolText(InteractiveImportObject));
        }

        // Validity.
        if (!presetElement) {
            Variant checkResult;
            if (!CheckValid(CDevObject, mPipeClass, true, checkResult, nullptr)) {
                if (InteractiveImportObject) {
                    auto& host = diagnostics::utilities();
                    host.MessageBox(host.Translate(msg::ObjectNotAllowed) + " " + must(CDevObject).SystemFullName(),
                                    mb::Exclamation, host.Translate(msg::TubrixDesigner));
                }
                return trace.leaveText("not valid");
            }
        }

        // Cascade reset: both maps are always replaced together.
        auto& state = moduleState(must(CDevObject ? CDevObject : presetElement));
        if (!state.m_CreatedObjects || ResetCreated) {
            trace.text("resetting m_CreatedObjects");
            state.m_CreatedObjects = std::make_shared<ObjectMap>();
            trace.text("resetting m_CreatedPipeSpecElem");
            state.m_CreatedPipeSpecElem = std::make_shared<ObjectMap>();
        }

        // Source bookkeeping.
        WorksetRef workset;
        if (CDevObject) {
            if (same(CDevObject, presetElement) && CDevObject->CDevice()) CDevObject = CDevObject->CDevice();
            const auto key = CDevObject->SystemFullName();
            if (state.m_CreatedObjects->Exists(key)) return trace.leaveText("already added");
            trace.text("adding " + key + " to m_CreatedObjects");
            state.m_CreatedObjects->Add(key, CDevObject);
            workset = CDevObject->Workset();
        } else if (mPipeClass) {
            workset = mPipeClass->Workset();
        } else {
            return trace.leaveText("mPipeClass empty");
        }

        const auto elements = must(mPipeClass).Devices();
        DeviceRef root = CDevObject;
        if (root && !IsPipeClass(CDevObject)) root = topOfBaseChain(root);

        // The duplicate question: only the first element of the same root is named.
        if (CDevObject && !presetElement && !InteractiveImportObject && !RecursiveCall) {
            if (const auto existing = firstElementWithRoot(*elements, root); existing && !confirmDuplicate(existing))
                return trace.leaveText("no");
        }

        // The device.
        DeviceRef element = presetElement;
        if (!element) {
            element = asDevice(elements->CreateNewWithName(elements->ItemName("001")));
            must(element).SetCDevice(root);
        }

        // Element bookkeeping.
        if (!state.m_CreatedPipeSpecElem) {
            trace.text("setting m_CreatedPipeSpecElem to new Dictionary");
            state.m_CreatedPipeSpecElem = std::make_shared<ObjectMap>();
        }
        const auto elementKey = element->SystemFullName();
        if (!state.m_CreatedPipeSpecElem->Exists(elementKey)) {
            trace.text("adding " + elementKey + " to m_CreatedPipeSpecElem");
            state.m_CreatedPipeSpecElem->Add(elementKey, element);
        }

        // A pipe class in a pipe class gets no chapter and no range.
        if (IsPipeClass(CDevObject)) {
            result = element;
            return trace.leaveText("cDevObject is a pipe class");
        }

        DeviceRef CatalogOwner = prepareNameRange(element, mPipeClass, trace);
        sharedPCOMRange().InitNDRange(element, mPipeClass);

        // Classes for the outside design system: the element may pull further
        // elements in, and a cancelled selector choice may delete it again.
        if (mPipeClass->Spec(diagnostics::names().PDMS())) {
            if (!CatalogOwner) InitCatalogOwner(CatalogOwner, element, mPipeClass);
            UpdatePDMSSpecComp(element, mPipeClass, RecursiveCall, groupId, InteractiveImportObject, CatalogOwner);
            if (element->IsDeleted() || element->IsMarkedDeleted())
                return trace.leaveText("NewPipeSpecElement is deleted");
            // The caller of a recursive call works on from its own arguments.
            if (RecursiveCall) return trace.leaveText("recursive call");
        }

        DropCachedEntry(*must(workset).Globals(), mPipeClass);
        CheckSchedule();
        result = element;
        trace.leave();
    });
    return result;
}

DeviceRef NewPipeClassElement(const DeviceRef& CDevObject, const DeviceRef& PipeClass, bool InteractiveImportObject)
{
    DeviceRef result;
    Procedure(cls::AddToPipeClass, "Function NewPipeClassElement").run([&] {
        if (!CDevObject || !PipeClass) return;
        std::string groupId;
        result = NewPipeSpecElement(CDevObject, PipeClass, false, true, groupId, InteractiveImportObject, nullptr);
    });
    return result;
}

}  // namespace pipespec::addtopipeclass
