// A database file of any content: opened for writing, as the commands that
// save open it, and its newest step taken back when the file has one.

#include "FuzzSupport.h"
#include "platform/persistence/Persistence.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace pipespec;
    const fuzz::TempFile file(fuzz::text(data, size), ".pspec");
    fuzz::refusalAllowed([&] {
        auto opened = platform::ProjectFile::open(file.path());
        if (opened.undoSteps() > 0) (void)opened.undo();
    });
    return 0;
}
