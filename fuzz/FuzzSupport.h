#pragma once

// What the harnesses share. Bad input may be refused with a PlatformError;
// any other exception that escapes, a sanitizer report or a broken rule is a
// finding, and libFuzzer keeps the input that caused it.

#include "objectmodel/Errors.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

namespace pipespec::fuzz {

[[nodiscard]] inline std::string_view text(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

// Runs `step`; a refusal of the input is an answer, not a finding.
template <class Step>
void refusalAllowed(Step&& step)
{
    try {
        step();
    } catch (const PlatformError&) {
    }
}

// A rule that holds for every input; breaking it stops the run as a crash would.
inline void require(bool holds, const char* rule)
{
    if (holds) return;
    std::fprintf(stderr, "fuzz: rule broken: %s\n", rule);
    std::abort();
}

// The input as a file of its own, for the readers that take a path; removed
// again, together with the files SQLite may have put beside it.
class TempFile {
public:
    TempFile(std::string_view content, std::string_view extension)
        : path_(std::filesystem::temp_directory_path() /
                ("pipespec-fuzz-" + std::to_string(getpid()) + std::string(extension)))
    {
        std::ofstream(path_, std::ios::binary | std::ios::trunc)
            .write(content.data(), static_cast<std::streamsize>(content.size()));
    }
    ~TempFile()
    {
        std::error_code ignored;
        for (const auto* suffix : {"", "-wal", "-shm", "-journal"})
            std::filesystem::remove(path_.string() + suffix, ignored);
    }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace pipespec::fuzz
