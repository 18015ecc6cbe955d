#pragma once

// The helper object the selector engine and the component search call on:
// generic types of function codes, and components of a pipe class by
// function code and nominal diameter.

#include "objectmodel/ServiceInterfaces.h"

#include <memory>
#include <string>
#include <string_view>

namespace pipespec::platform {

class PipeSpecHelper final : public IPipeSpecHelper {
public:
    explicit PipeSpecHelper(std::shared_ptr<const INameTable> names);

    void SetPipeClass(const DeviceRef& pipeClass) override { pipeClass_ = pipeClass; }
    void SetSearchRoot(const DeviceRef& root) override { searchRoot_ = root; }

    // Mode 0 only: the elements of the search root, and of the sub-classes it
    // lists, whose function code reads as the text given and whose name range
    // holds the nominal diameter; an empty text matches any element. A
    // diameter that is no number, or another mode, is an error (5).
    CollectionRef FindComponents(int mode, std::string_view functionCode, std::string_view nominalDiameter) override;

    // The generic-type menu lists one entry per group of function codes: its
    // name is a pattern of the code's length in which "X" stands for any digit
    // ("101XX", "91XXX"), its description is the generic type. The first
    // entry, in menu order, whose pattern fits the code gives the text; none
    // gives the empty text. An empty menuRoot is filled with the menu of the
    // pipe class's project ("@3D|@Menu", searched down the base projects).
    std::string GenericTypeOfFunctionCode(DeviceRef& menuRoot, long functionCode) override;

private:
    std::shared_ptr<const INameTable> names_;
    DeviceRef pipeClass_;
    DeviceRef searchRoot_;
};

}  // namespace pipespec::platform
