#pragma once

// A fresh directory for a test's files, removed with everything in it when
// the test is done.

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace pipespec::support {

class TempDirectory {
public:
    TempDirectory()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "pipespec-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) throw std::runtime_error("cannot make a temporary directory");
        path_ = pattern;
    }
    ~TempDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

}  // namespace pipespec::support
