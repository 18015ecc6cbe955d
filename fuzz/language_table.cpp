// A language table of any content, and any text through Translate and the
// placeholder fills.

#include "FuzzSupport.h"
#include "diagnostics/Translate.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace pipespec;
    using fuzz::require;
    const auto input = fuzz::text(data, size);

    const auto literal = diagnostics::parseMessage(input);
    const auto untranslated = diagnostics::Translate(input, {});
    require(literal ? untranslated == literal->defaultText : untranslated == input,
            "without a table a literal reads as its default text, any other text as itself");
    require(diagnostics::FillPercent1(input, "v").find("%1%") == std::string::npos, "every %1% is filled");
    require(diagnostics::FillBrace0(input, "v").find("{0}") == std::string::npos, "every {0} is filled");

    fuzz::refusalAllowed([&] {
        const auto table = diagnostics::LanguageTable::parse(input, "fuzz");
        for (const auto& key : table.keys()) {
            const auto* text = table.find(key);
            require(text != nullptr, "every key listed has its text");
            require(diagnostics::Translate("~" + key + " default", table) == *text,
                    "a literal reads as the table's text");
        }
    });
    return 0;
}
