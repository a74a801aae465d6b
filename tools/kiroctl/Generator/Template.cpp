#include "Template.hpp"

#include "../CommandError.hpp"

#include <algorithm>
#include <sstream>
#include <vector>

namespace Vela::Kiroctl
{

namespace
{

constexpr const char* ifMark = "@if ";
constexpr const char* elseMark = "@else";
constexpr const char* endMark = "@end";

std::string SelectLines(const std::string& text, const std::set<std::string>& conditions)
{
    std::string result;
    // Innermost last.
    std::vector<bool> isTaken;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
    {
        const bool needsCondition = line == elseMark || line == endMark;
        if (needsCondition && isTaken.empty())
        {
            throw CommandError(ExitCode::Failed, "A template has '{}' without '{}'.", line, ifMark);
        }
        if (line.starts_with(ifMark))
        {
            isTaken.push_back(conditions.contains(line.substr(std::string(ifMark).size())));
        }
        else if (line == elseMark)
        {
            isTaken.back() = !isTaken.back();
        }
        else if (line == endMark)
        {
            isTaken.pop_back();
        }
        else if (std::ranges::find(isTaken, false) == isTaken.end())
        {
            result += line + "\n";
        }
    }
    if (!isTaken.empty())
    {
        throw CommandError(ExitCode::Failed, "A template has '{}' without '{}'.", ifMark, endMark);
    }
    return result;
}

} // namespace

std::string RenderTemplate(const std::string& text, const TemplateValues& values)
{
    const std::string selected = SelectLines(text, values.conditions);
    std::string result;
    std::size_t position = 0;
    while (position < selected.size())
    {
        const std::size_t begin = selected.find('@', position);
        const std::size_t end = begin == std::string::npos ? begin : selected.find('@', begin + 1);
        const auto value = end == std::string::npos ? values.texts.end()
                                                    : values.texts.find(selected.substr(begin + 1, end - begin - 1));
        if (value == values.texts.end())
        {
            // The next "@" may begin a name.
            const std::size_t next = begin == std::string::npos ? selected.size() : begin + 1;
            result += selected.substr(position, next - position);
            position = next;
            continue;
        }
        result += selected.substr(position, begin - position) + value->second;
        position = end + 1;
    }
    return result;
}

} // namespace Vela::Kiroctl
