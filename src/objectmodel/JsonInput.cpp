#include "objectmodel/JsonInput.h"

#include "objectmodel/Errors.h"

#include <nlohmann/json.hpp>

#include <istream>
#include <string>

namespace pipespec {

namespace {

using nlohmann::json;

template <class Input>
json parseLimited(Input&& input, std::string_view source)
{
    // The parser tells the depth of a container before it opens it: the
    // number of containers around it.
    const auto limited = [source](int depth, json::parse_event_t event, const json&) {
        const bool opens = event == json::parse_event_t::object_start || event == json::parse_event_t::array_start;
        if (opens && depth >= kMaxJsonNesting)
            throw PlatformError(err::Configuration, std::string(source) + " nests deeper than " +
                                                        std::to_string(kMaxJsonNesting) + " levels");
        return true;
    };
    try {
        return json::parse(std::forward<Input>(input), limited);
    } catch (const json::exception& e) {
        throw PlatformError(err::Configuration, std::string(source) + " is not valid JSON: " + e.what());
    }
}

}  // namespace

json parseJson(std::string_view text, std::string_view source) { return parseLimited(text, source); }

json parseJson(std::istream& in, std::string_view source) { return parseLimited(in, source); }

}  // namespace pipespec
