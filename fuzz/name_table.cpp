// A name table file of any content, read as the shipped table is; what it
// accepts is laid over the shipped table too, as a project's overrides are.
// Either table must answer for every leaf and sub-tree it was given.

#include "FuzzSupport.h"
#include "platform/JsonNameTable.h"

#include <nlohmann/json.hpp>

namespace {

using pipespec::INameTable;
using pipespec::fuzz::require;

void requireAnswers(const INameTable& table, const nlohmann::json& node, bool root)
{
    for (const auto& item : node.items()) {
        if (root && item.key() == "IsBaseDatabase") continue;
        if (item.value().is_string())
            require(table.Leaf(item.key()) == item.value().get<std::string>(), "a leaf reads as given");
        else
            requireAnswers(*table.SubTree(item.key()), item.value(), false);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace pipespec;
    static const auto shipped = platform::JsonNameTable::load(platform::JsonNameTable::shippedPath());
    const auto input = fuzz::text(data, size);
    const fuzz::TempFile file(input, ".json");
    fuzz::refusalAllowed([&] {
        const auto table = platform::JsonNameTable::load(file.path());
        const auto document = nlohmann::json::parse(input);
        requireAnswers(*table, document, true);
        requireAnswers(*shipped->overlaid(document, "fuzz"), document, true);
    });
    return 0;
}
