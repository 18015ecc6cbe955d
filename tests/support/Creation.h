#pragma once

// The frame of the tests of element creation and of the selector engine: a
// world with its catalogue (a database of its own, so the module state of the
// creation cascade starts fresh), and the range control and the chooser of
// selectors, which a test may replace, put back after it.

#include "diagnostics/ServiceRegistry.h"
#include "elements/AddToPipeClass.h"
#include "elements/RangeControl.h"
#include "selectors/ChooseSelector.h"
#include "support/World.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace pipespec::support {

class CreationTest : public ::testing::Test {
protected:
    // The engineer's choices of a selector, scripted; installed for this test.
    std::shared_ptr<addtopipeclass::ScriptedChooseSelector> chooser() const
    {
        auto scripted = std::make_shared<addtopipeclass::ScriptedChooseSelector>();
        addtopipeclass::setChooseSelectorView(scripted);
        return scripted;
    }
    // The full names of what the last creation cascade made.
    std::vector<std::string> created() const { return must(addtopipeclass::CreatedObjects(*world.workset())).Keys(); }

    diagnostics::ScopedService<addtopipeclass::IRangeControl> rangeControl{addtopipeclass::setSharedPCOMRange, nullptr};
    diagnostics::ScopedService<addtopipeclass::IChooseSelectorView> chooserView{addtopipeclass::setChooseSelectorView,
                                                                                nullptr};
    World world;
    DeviceRef catalog = world.catalog();
};

}  // namespace pipespec::support
