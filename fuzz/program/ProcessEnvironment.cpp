// The C library never gives back what the text of an environment variable took, so a fuzz target that sets variables
// would run out of memory. Here is a process environment that does give it back.
#include <stdlib.h>
#include <unistd.h>

#include <map>
#include <string>
#include <vector>

namespace
{

struct ProcessEnvironment
{
    void Apply()
    {
        texts.clear();
        for (auto& [name, text] : variables)
        {
            texts.push_back(text.data());
        }
        texts.push_back(nullptr);
        environ = texts.data();
    }

    std::map<std::string, std::string> variables;
    std::vector<char*> texts;
};

ProcessEnvironment& GetProcessEnvironment()
{
    static auto& environment = *new ProcessEnvironment;
    return environment;
}

} // namespace

extern "C" int setenv(const char* name, const char* value, int) noexcept
{
    auto& environment = GetProcessEnvironment();
    environment.variables[name] = std::string(name) + '=' + value;
    environment.Apply();
    return 0;
}

extern "C" int clearenv() noexcept
{
    auto& environment = GetProcessEnvironment();
    environment.variables.clear();
    environment.Apply();
    return 0;
}
