#pragma once

#include <unistd.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Vela::Testing
{

/// Texts as the calls that execute a program take them.
class ExecutionTexts
{
public:
    static ExecutionTexts MakeCommand(const std::string& executable, const std::vector<std::string>& arguments)
    {
        std::vector<std::string> words{executable};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return ExecutionTexts(std::move(words));
    }

    /// This process's own environment with changes.
    static ExecutionTexts MakeEnvironment(const std::map<std::string, std::string>& changes)
    {
        std::vector<std::string> variables;
        for (char** variable = environ; *variable != nullptr; ++variable)
        {
            const std::string text = *variable;
            if (!changes.contains(text.substr(0, text.find('='))))
            {
                variables.push_back(text);
            }
        }
        for (const auto& [name, value] : changes)
        {
            variables.push_back(name);
            variables.back().append("=").append(value);
        }
        return ExecutionTexts(std::move(variables));
    }

    ExecutionTexts(const ExecutionTexts&) = delete;
    ExecutionTexts& operator=(const ExecutionTexts&) = delete;

    /// Valid as long as this object lives.
    [[nodiscard]] char* const* Get() const noexcept
    {
        return pointers.data();
    }

private:
    explicit ExecutionTexts(std::vector<std::string> list)
        : texts(std::move(list))
    {
        pointers.reserve(texts.size() + 1);
        for (std::string& text : texts)
        {
            pointers.push_back(text.data());
        }
        pointers.push_back(nullptr);
    }

    std::vector<std::string> texts;
    std::vector<char*> pointers;
};

} // namespace Vela::Testing
