// The JSON project reader on any file, taken as the command line takes a
// project given with --db.

#include "FuzzSupport.h"
#include "platform/JsonProject.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace pipespec;
    static const auto names = platform::JsonNameTable::load(platform::JsonNameTable::shippedPath());
    const fuzz::TempFile file(fuzz::text(data, size), ".json");
    fuzz::refusalAllowed([&] { (void)platform::loadJsonProject(file.path(), *names); });
    return 0;
}
