#include "diagnostics/DataDirectory.h"

#include "objectmodel/Errors.h"

#include <system_error>

namespace pipespec::diagnostics {

std::filesystem::path dataDirectory()
{
    // The kernel names the program's own file with links resolved, so a
    // link to the program elsewhere still finds the data of its installation.
    static const auto directory = [] {
        std::error_code error;
        const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
        if (error)
            throw PlatformError(err::Configuration, "The program cannot tell where it runs from (/proc/self/exe: " +
                                                        error.message() + "), so it cannot find its data");
        return program.parent_path().parent_path() / "share" / "pipespec";
    }();
    return directory;
}

}  // namespace pipespec::diagnostics
