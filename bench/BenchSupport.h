#pragma once

// What the benchmark programs build their databases with.

#include "platform/JsonNameTable.h"
#include "platform/persistence/Persistence.h"
#include "platform/store/Database.h"

#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

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

// A catalogue of `count` components in the base project and an empty pipe
// class in the plant project, offered in 20 nominal diameters.
struct Catalogue {
    std::shared_ptr<platform::Database> database = platform::Database::create();
    std::vector<DeviceRef> components;
    DeviceRef pipeClass;

    explicit Catalogue(int count)
    {
        const auto base = database->addProject("BASE");
        const auto plant = database->addProject("PLANT", base);
        database->workset()->SetCurrentProject(plant);

        const auto catalog = base->addRoot("@40");
        components.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            const auto name = numbered("C", i);
            const auto component = asDevice(catalog->OwnElements()->CreateNewWithName(name));
            attribute(component, "GD", "VFCD", "10100");
            components.push_back(component);
        }

        pipeClass = asDevice(plant->addRoot("@20")->OwnElements()->CreateNewWithName("PC-A1"));
        attribute(pipeClass, "GD", "VFCD", "10000");
        attribute(pipeClass, "NR", "DNFROM", "15");
        attribute(pipeClass, "NR", "DNTO", "600");
        const auto list = attribute(pipeClass, "NR", "DNLIST", "");
        int row = 0;
        for (const int dn : {10, 15, 20, 25, 32, 40, 50, 65, 80, 100, 125, 150, 200, 250, 300, 350, 400, 500, 600, 700})
            list->SetXValue(row++, std::to_string(dn));
    }
};

// `count` variants of one flange in the base project and a PDMS class with a
// selector tree in the plant project.
struct PdmsCatalogue : Projects {
    std::vector<DeviceRef> components;
    DeviceRef pipeClass;

    explicit PdmsCatalogue(int count)
    {
        // The folder of the state table, which the first element makes.
        base->tableRoot()->createChild("@3D")->createChild("00")->createChild("PDMS");
        const auto selectors = selectorBase(*this);
        const auto catalog = base->root("@40");
        const auto flange = asDevice(catalog->OwnElements()->CreateNewWithName("FL-WN"));
        attribute(flange, "GD", "VFCD", "10100");
        attribute(flange, "PIPE", "VSTD", "FLAN");
        attribute(flange, "PIPE", "FTYPE", "WN");
        attribute(flange, "PDMS", "Selector", "");
        flange->Spec("PDMS")->SetControlProperties(
            "Cols:1;ColHorizontal:0;ColsTitles:VC11|;RowType:0;ColsSizes:0|800|;RowTitles:");
        components.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            const auto variant = asDevice(catalog->OwnElements()->CreateNewWithName(numbered("FL-WN-", i)));
            variant->SetCDevice(flange);
            components.push_back(variant);
        }

        pipeClass = asDevice(plant->addRoot("@20")->OwnElements()->CreateNewWithName("PC-E3D"));
        attribute(pipeClass, "GD", "VFCD", "10001");
        attribute(pipeClass, "NR", "DNFROM", "15");
        attribute(pipeClass, "NR", "DNTO", "600");
        attribute(pipeClass, "PDMS", "State", "");
        attribute(pipeClass, "E3D", "MATXT", "");
        const auto root = asDevice(pipeClass->OwnElements()->CreateNewWithName("SelectorRoot"));
        root->SetCDevice(selectors);
        const auto flanges = selector(root, "FLAN", "FLAN", "PIPE.FTYPE", selectors);
        for (const auto* type : {"WN", "BL"})
            selector(flanges, std::string("FTYPE:") + type, type, "PDMS.PBOR1", selectors);
    }
};

// The standard table at that "|" path below a project's table root, made
// with the tables on its way.
inline std::shared_ptr<platform::StandardTable> table(std::shared_ptr<platform::StandardTable> owner,
                                                      const std::string& path)
{
    std::size_t from = 0;
    while (from <= path.size()) {
        const auto bar = std::min(path.find('|', from), path.size());
        const auto part = path.substr(from, bar - from);
        auto next = std::dynamic_pointer_cast<platform::StandardTable>(owner->Children()->Item(part));
        owner = next ? next : owner->createChild(part);
        from = bar + 1;
    }
    return owner;
}

inline void tableValue(const std::shared_ptr<platform::StandardTable>& owner, const std::string& value,
                       const std::string& description)
{
    const auto made = std::dynamic_pointer_cast<IStandardValue>(owner->Values()->CreateNewWithName(value));
    made->SetValue(value);
    made->SetDescription(description);
}

inline std::shared_ptr<const platform::JsonNameTable> shippedNames()
{
    static const auto names = platform::JsonNameTable::load(platform::JsonNameTable::shippedPath());
    return names;
}

// A pipe class of `count` elements as element creation leaves them: a
// catalogue object, a function code (10100 to 10999 in turn) and a
// nominal-diameter range each; with the tables of function codes and nominal
// diameters that the search offers.
struct LargeClass : Projects {
    DeviceRef pipeClass;

    explicit LargeClass(int count)
    {
        const auto codes = table(base->tableRoot(), "@3D|00|VFCD");
        for (int code = 10100; code < 11000; ++code)
            tableValue(codes, std::to_string(code), "Function " + std::to_string(code));
        const auto diameters = table(base->tableRoot(), "@3D|01|DIN|05");
        for (const int dn : {15, 50, 100, 600}) tableValue(diameters, std::to_string(dn), "DN " + std::to_string(dn));
        const auto catalog = base->addRoot("@40");
        const auto flange = asDevice(catalog->OwnElements()->CreateNewWithName("FL-WN"));
        attribute(flange, "GD", "VFCD", "10100");
        pipeClass = asDevice(plant->addRoot("@20")->OwnElements()->CreateNewWithName("PC-LARGE"));
        attribute(pipeClass, "GD", "VFCD", "10000");
        const auto list = attribute(pipeClass, "NR", "DNLIST", "");
        list->SetXValue(0, "15");
        const auto elements = pipeClass->OwnElements();
        for (int i = 0; i < count; ++i) {
            const auto element = asDevice(elements->CreateNewWithName(numbered("", i + 1)));
            element->SetDescription("Flange " + std::to_string(i));
            // Its own chapters first: once it has a base, GD is the base's until stored.
            attribute(element, "GD", "VFCD", std::to_string(10100 + i % 900));
            attribute(element, "NR", "DNFROM", "15");
            attribute(element, "NR", "DNTO", "600");
            element->SetCDevice(flange);
        }
    }
};

}  // namespace pipespec::bench
