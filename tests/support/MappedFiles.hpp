#pragma once

#include <fstream>
#include <string>

namespace Vela::Testing
{

/// True when a file of that path is mapped into this process.
inline bool IsMapped(const std::string& path)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
    {
        if (line.ends_with(" " + path))
        {
            return true;
        }
    }
    return false;
}

} // namespace Vela::Testing
