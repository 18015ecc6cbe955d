#pragma once

// The module AddToPipeClass: plain procedures with module-level state that
// decide whether an object may become an element of a pipe class and build
// the element. No procedure lets a failure escape: each reports it through
// the error tail and leaves, so callers test results for emptiness.

#include "objectmodel/ObjectModel.h"
#include "objectmodel/ServiceInterfaces.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace pipespec::addtopipeclass {

using ObjectMap = KeyedMap<ObjectRef>;

// The module-level state, one per database (objectmodel/DatabaseState.h): a
// database that closes takes it along, and another starts with none. The
// maps are empty (not made) until the first cascade, and keep their contents
// from one cascade to the next reset.
struct ModuleState {
    // Source objects already turned into elements in this cascade, by SystemFullName.
    std::shared_ptr<ObjectMap> m_CreatedObjects;
    // Elements made in this cascade, by SystemFullName; what CreatedObjects gives.
    std::shared_ptr<ObjectMap> m_CreatedPipeSpecElem;
    // True only while AfterAddToPipeSpec runs its creation call.
    bool AfterAddRunning = false;
    // The norm-dimension object, chosen for the first chapter that asked and
    // kept for every later one while the database is open.
    DeviceRef NormDimensionObject;
    // The root of the generic-type menu, found by the first question walk that needed it.
    DeviceRef m_MenuCDev;
};

// The state of the workset's database, or of the database the object belongs
// to (error ObjectNotSet for an object of no database).
ModuleState& moduleState(IWorkset& workset);
ModuleState& moduleState(const IBaseObject& object);

// The elements made by the last creation cascade in the workset's database (may be empty).
std::shared_ptr<const ObjectMap> CreatedObjects(IWorkset& workset);

// A pipe class is an object whose function code lies in 10000..10008.
// VFCD receives the code read, 0 if there is none. A code too large for 32
// bits is an error of the caller's procedure: this accessor has no tail.
bool IsPipeClass(const ObjectRef& object, std::int32_t& VFCD);
bool IsPipeClass(const ObjectRef& object);

// May CDevObject become an element of mPipeClass? Every refusal stands in the
// trace with its own words; the user sees none of them here.
bool CheckValid(const DeviceRef& CDevObject, const DeviceRef& mPipeClass, bool UseElementCheck, Variant& checkResult,
                IElementFilter* IElementCheck);

// The child of a catalogue object whose name pattern ("123XX") matches a
// five-digit function code; empty for pipe-class codes.
DeviceRef MapCDeviceToXXX(const DeviceRef& CDevice, std::string_view code);

// The object whose chapters an element inherits: the catalogue owner of
// ordinary or of bolting components, or the pipe class when none is found.
void InitCatalogOwner(DeviceRef& CatalogOwner, const DeviceRef& element, const DeviceRef& mPipeClass);

// Fills the lower or upper attribute of an element's name-range chapter from
// the pipe class, unless it already shows a value.
void CalcMinMaxSpec(const SpecRef& NameRangeChapter, const std::string& SpecName, const DeviceRef& mPipeClass);

// The norm-dimension attribute for the lower or upper bound, for chapters whose
// value list differs from the pipe class's.
SpecRef GetNormDimensionSpec(const SpecRef& NameRangeChapter, const std::string& SpecName);

// Turns one object into one element of a pipe class, or gives a preset
// element that already stands under the class its chapters and range. The
// single road by which elements come into being; empty when nothing was made.
DeviceRef NewPipeSpecElement(DeviceRef CDevObject, const DeviceRef& mPipeClass, bool RecursiveCall, bool ResetCreated,
                             std::string& groupId, bool InteractiveImportObject, const DeviceRef& presetElement);

// Prepares a new element of a class with the PDMS chapter for the outside
// design system: chapter cards, state column, selector questions, the shop and
// field pair of a tube, the group id, attribute copies and the companion
// component. A failed step is reported and the later steps still run.
void UpdatePDMSSpecComp(const DeviceRef& CDevPC, const DeviceRef& mPipeClass, bool RecursiveCall, std::string& groupId,
                        bool InteractiveImportObject, const DeviceRef& CatalogOwner);

// The element's design-system text becomes a formula on its source text, and
// the element records what it was made from.
void CopyAttribs(const DeviceRef& CDevPC);

// The material text link follows the element's material source.
void CopyMatxt(const DeviceRef& CDevPC);

// Elements keep the running number they were created with: the generated
// name is looked up and nothing is written.
void GenerateName(const DeviceRef& CDevPC, const std::string& groupId);

// A new element from a source object, starting a new cascade.
DeviceRef NewPipeClassElement(const DeviceRef& CDevObject, const DeviceRef& PipeClass, bool InteractiveImportObject);

// Drops the pipe class's cached entry (option 64), as its elements changed.
void DropCachedEntry(IGlobals& globals, const DeviceRef& pipeClass);

// Kept as the place of the schedule check of element creation; it checks nothing.
void CheckSchedule();

}  // namespace pipespec::addtopipeclass
