#pragma once

// The wizard: an outside component that solves template pipe classes and
// elements and shows the values it works from. The list control drives it;
// what solving changes in the database is the wizard's own business.

#include "objectmodel/ObjectModel.h"
#include "objectmodel/ServiceInterfaces.h"

#include <memory>

namespace pipespec {

// Besides solving, the engine is the element check that CheckValid is given.
class IWizardEngine : public IElementFilter {
public:
    virtual void SolveTemplate(const DeviceRef& pipeClass, Variant& result) = 0;
    virtual void SolveCDevice(const DeviceRef& element, bool& solved) = 0;
    virtual void SetTrace(bool on) = 0;
};

class IWizard {
public:
    virtual ~IWizard() = default;
    virtual void SetPipeClass(const DeviceRef& pipeClass) = 0;
    virtual void SetVisible(bool visible) = 0;
    virtual void Init() = 0;
    virtual void ShutDown() = 0;
    virtual void ShowPPFValues(const DeviceRef& object) = 0;
    virtual std::shared_ptr<IWizardEngine> Engine() const = 0;
};

}  // namespace pipespec
