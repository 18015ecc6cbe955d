#include "selectors/LayoutHelper.h"

#include "objectmodel/Text.h"

#include <string>
#include <vector>

namespace pipespec::addtopipeclass {

namespace {
constexpr std::string_view kLineBreak = "\r\n";

// The properties text cut into the edges of its first line and the other lines.
struct Layout {
    std::vector<std::string> edges;
    std::vector<std::string> lines;

    explicit Layout(std::string_view text)
    {
        size_t start = 0;
        while (start <= text.size()) {
            const auto end = text.find('\r', start);
            const auto line = text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
            if (start == 0)
                edges = split(line);
            else if (!line.empty())
                lines.emplace_back(line);
            if (end == std::string_view::npos) break;
            start = end + 1;
            if (start < text.size() && text[start] == '\n') ++start;
        }
        edges.resize(4);
    }

    static std::vector<std::string> split(std::string_view line)
    {
        std::vector<std::string> parts;
        size_t start = 0;
        for (auto sep = line.find(';'); sep != std::string_view::npos; sep = line.find(';', start)) {
            parts.emplace_back(line.substr(start, sep - start));
            start = sep + 1;
        }
        if (!line.empty()) parts.emplace_back(line.substr(start));
        return parts;
    }

    std::string* find(int index)
    {
        if (index >= LayoutHelper::Left && index <= LayoutHelper::Bottom)
            return &edges[static_cast<size_t>(index - LayoutHelper::Left)];
        const auto key = std::to_string(index) + "=";
        for (auto& line : lines)
            if (line.rfind(key, 0) == 0) return &line;
        return nullptr;
    }

    std::string text() const
    {
        std::string out = edges[0] + ";" + edges[1] + ";" + edges[2] + ";" + edges[3];
        for (const auto& line : lines) out.append(kLineBreak).append(line);
        return out;
    }
};

std::string valueOf(int index, const std::string& entry)
{
    if (index >= LayoutHelper::Left && index <= LayoutHelper::Bottom) return entry;
    return entry.substr(entry.find('=') + 1);
}
}  // namespace

double LayoutHelper::GetValue(int index) const
{
    if (!spec_) return 0;
    Layout layout(spec_->ControlProperties());
    const auto* entry = layout.find(index);
    if (!entry) return 0;
    const auto value = valueOf(index, *entry);
    return text::IsNumeric(value) ? text::CDbl(value) : 0;
}

void LayoutHelper::SetValue(int index, std::string_view value)
{
    Layout layout(must(spec_).ControlProperties());
    if (auto* entry = layout.find(index))
        *entry =
            index >= Left && index <= Bottom ? std::string(value) : std::to_string(index) + "=" + std::string(value);
    else
        layout.lines.push_back(std::to_string(index) + "=" + std::string(value));
    spec_->SetControlProperties(layout.text());
}

}  // namespace pipespec::addtopipeclass
