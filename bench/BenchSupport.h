#pragma once

// What the benchmark programs build their databases with.

#include "platform/persistence/Persistence.h"
#include "platform/store/Database.h"

#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>

namespace pipespec::bench {

// A base project (the catalogue) and a plant project on it, which is current.
struct Projects {
    std::shared_ptr<platform::Database> database = platform::Database::create();
    std::shared_ptr<platform::StoreProject> base = database->addProject("BASE");
    std::shared_ptr<platform::StoreProject> plant = database->addProject("PLANT", base);

    Projects() { database->workset()->SetCurrentProject(plant); }
};

// A new attribute of the device, in the chapter of that name (made if missing).
inline SpecRef attribute(const DeviceRef& device, const std::string& chapter, const std::string& name,
                         const std::string& value)
{
    auto own = asSpec(device->SpecsByName()->Item(chapter));
    if (!own) own = asSpec(device->SpecsByName()->CreateNewWithName(chapter));
    const auto spec = asSpec(own->OwnSpecifications()->CreateNewWithName(name));
    spec->SetValue(value);
    return spec;
}

// The base object of every selector, "@40|SELBASE" of the base project, with
// the selector attributes; installed as option 368, where new selectors are
// made from.
inline DeviceRef selectorBase(const Projects& projects)
{
    auto catalogue = projects.base->root("@40");
    if (!catalogue) catalogue = projects.base->addRoot("@40");
    const auto made = asDevice(catalogue->OwnElements()->CreateNewWithName("SELBASE"));
    for (const auto* name : {"Answer", "Question", "DefaultAnswer"}) attribute(made, "Sele", name, "");
    attribute(made, "Sele", "Type", "1");
    // Named: GCC 12 warns falsely about a temporary Variant destroyed here.
    const Variant option(made);
    projects.database->workset()->globals()->setoption(368, option);
    return made;
}

// A selector under `owner` with the answer that leads to it and the question it asks next.
inline DeviceRef selector(const DeviceRef& owner, const std::string& name, const std::string& answer,
                          const std::string& question, const DeviceRef& base)
{
    const auto made = asDevice(owner->OwnElements()->CreateNewWithName(name));
    attribute(made, "Sele", "Answer", answer);
    attribute(made, "Sele", "Question", question);
    made->SetCDevice(base);
    return made;
}

// "A7": appended rather than added, since GCC 12 warns falsely about
// "literal" + std::to_string(...) when it inlines the latter.
inline std::string numbered(const char* prefix, long number)
{
    std::string name(prefix);
    name += std::to_string(number);
    return name;
}

// The large database that the file and memory figures are taken on: a
// project PLANT of devices under one root, each with one chapter of
// kAttributesPerDevice attributes; a million attributes at kMillionDevices.
inline constexpr int kAttributesPerDevice = 100;
inline constexpr int kMillionDevices = 10'000;
inline constexpr int kMillionAttributes = kMillionDevices * kAttributesPerDevice;

inline std::shared_ptr<platform::Database> attributeProject(int devices)
{
    auto database = platform::Database::create();
    const auto root = database->addProject("PLANT")->addRoot("@20");
    for (int d = 0; d < devices; ++d) {
        const auto chapter = root->createChild(numbered("D", d))->createSpec("GD");
        for (int a = 0; a < kAttributesPerDevice; ++a)
            chapter->createSpec(numbered("A", a))->SetValue(std::to_string(a));
    }
    return database;
}

// The counter the memory figures are reported in.
inline constexpr const char* kBytesPerAttribute = "bytesPerAttribute";

// A path in the temporary folder that no other run of the program uses.
inline std::filesystem::path scratch(const std::string& name)
{
    return std::filesystem::temp_directory_path() / numbered("pipespec-bench-", ::getpid()).append("-").append(name);
}

// A file of a million attributes, made once for the whole run and removed at its end.
inline const std::filesystem::path& millionFile()
{
    struct Scratch {
        std::filesystem::path path = scratch("million.pspec");
        Scratch() { platform::ProjectFile::create(path, attributeProject(kMillionDevices)); }
        Scratch(const Scratch&) = delete;
        Scratch& operator=(const Scratch&) = delete;
        ~Scratch() { std::filesystem::remove(path); }
    };
    static const Scratch file;
    return file.path;
}

}  // namespace pipespec::bench
