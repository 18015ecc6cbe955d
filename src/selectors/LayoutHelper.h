#pragma once

#include "objectmodel/ObjectModel.h"

#include <string_view>

namespace pipespec::addtopipeclass {

// Where an attribute's edit control stands on its chapter's form. The first
// line of the attribute's ControlProperties holds the four edges,
// "left;top;right;bottom"; further lines hold other layout values as
// "index=value". Values are read by index, as the form designer numbers them:
// 27 left, 28 top, 29 right, 30 bottom.
class LayoutHelper {
public:
    static constexpr int Left = 27;
    static constexpr int Top = 28;
    static constexpr int Right = 29;
    static constexpr int Bottom = 30;

    void Load(const SpecRef& spec) { spec_ = spec; }
    // A value that is not set, or not a number, reads as 0.
    double GetValue(int index) const;
    // Writes the value into the loaded attribute's ControlProperties.
    void SetValue(int index, std::string_view value);

private:
    SpecRef spec_;
};

}  // namespace pipespec::addtopipeclass
