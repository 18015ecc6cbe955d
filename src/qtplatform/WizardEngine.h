#pragma once

// The wizard's engine: which catalogue components fit a pipe class, and the
// solving of template classes. No Qt: it works on the database alone.
//
// A component fits a class (CheckElement) when
//   - it is no structure element (CreateOption 0): a structure element stands
//     for components that solving finds, and is none itself;
//   - its nominal pressure equals the class's, where both carry one: the
//     attribute "PN" of the selector chapter, as the catalogue's components
//     carry it;
//   - its nominal diameter (the first connection's) is one of the diameters
//     the class offers (its name-range list) or, where the class has no list,
//     lies within the class's lower and upper bound. A side that carries no
//     number is not compared.
// A refusal gives the reason as a text for users in the result; an
// acceptance leaves the result empty.
//
// Solving turns the placeholders of a template class (function code 10003)
// into real elements. A placeholder is a structure element (CreateOption not
// 0) with an element range ("DN15-DN100", or one diameter "DN50"). Solving it
// makes an element, through the ordinary road of element creation, from each
// catalogue component that carries the placeholder's function code, whose
// nominal diameter lies in the range and that fits the class. A component the
// class already has an element of (the same root of the base chain) is left
// out, so that solving again makes nothing and never asks about duplicates. The placeholder stays: it is the
// template a later solve works from. Everything one solve makes is one undo
// step.
//
// The catalogue is every device carrying a function code below the catalogue
// root ("@40") of the pipe class's project and of each of its base projects,
// nearest project first, each root searched in its own order.

#include "objectmodel/Wizard.h"

#include <string>
#include <vector>

namespace pipespec::qtplatform {

class WizardEngine final : public IWizardEngine {
public:
    bool CheckElement(const DeviceRef& pipeClass, const DeviceRef& object, Variant& result) override;
    // result: the number of elements made, 0 when nothing was to be solved.
    void SolveTemplate(const DeviceRef& pipeClass, Variant& result) override;
    void SolveCDevice(const DeviceRef& element, bool& solved) override;
    // On: every decision stands in the trace of class "QuorlPipeSpecWizard.Engine".
    void SetTrace(bool on) override { trace_ = on; }

    // The attribute of the nominal pressure, on components and classes alike.
    [[nodiscard]] static std::string PressureAttribute();
    // The catalogue components the pipe class sees, as told above.
    [[nodiscard]] static std::vector<DeviceRef> Catalogue(const DeviceRef& pipeClass);
    // Those of them that pass the validity test of element creation with this
    // engine as the element check: the class's switch for the check decides
    // whether the engine is asked, as it does for the component list.
    [[nodiscard]] std::vector<DeviceRef> Offers(const DeviceRef& pipeClass);

private:
    // Elements made for one placeholder from the catalogue given.
    int solve(const DeviceRef& element, const std::vector<DeviceRef>& catalogue);
    void trace(std::string_view function, std::string_view text) const;

    bool trace_ = false;
};

}  // namespace pipespec::qtplatform
