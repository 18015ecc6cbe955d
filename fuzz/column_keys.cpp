// The column keys of a selector grid, as a stored query may hold any text.

#include "FuzzSupport.h"
#include "selectors/ColumnKeys.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace pipespec::addtopipeclass::columnkey;
    using pipespec::fuzz::require;
    const auto key = pipespec::fuzz::text(data, size);

    require(isQuestion(key) == key.starts_with(Prefix), "a question key starts with the prefix");
    if (isQuestion(key))
        require(std::string(Prefix) + nestedName(key) == key, "the nested name is the rest of the key");
    require(key.ends_with(attributeName(key)), "the attribute name ends the key");
    require(key.starts_with(questionPart(key)), "the question part begins the name");
    (void)isBoreText(key);
    if (hasRangeMark(rangeMarkOfKey(key))) {
        const auto partner = partnerKey(key);
        require(partner.size() == key.size(), "the partner key is as long as the key");
        require(partnerKey(partner) == key, "the partner's partner is the key");
    }
    return 0;
}
