#pragma once

#include "Random.hpp"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace Vela::Testing
{

/// A file of a document. The first file of a list is the root.
struct DocumentFile
{
    /// The directory of the file, absolute.
    [[nodiscard]] std::string GetDirectory(const std::string& root) const
    {
        return (std::filesystem::path(root) / path).parent_path().string();
    }

    /// Relative to the directory of the root.
    std::string path;
    /// The paths of the files that it includes, in the same way.
    std::vector<std::string> includes;
};

/// The files in the order in which they are read: each after the one that includes it, depth first, and only once.
template <typename File>
std::vector<File> GetReadingOrder(const std::vector<File>& files)
{
    std::vector<File> order;
    const auto read = [&](const auto& again, const std::string& path) -> void
    {
        const auto isIt = [&](const File& file)
        {
            return file.path == path;
        };
        const auto found = std::find_if(files.begin(), files.end(), isIt);
        if (found == files.end() || std::any_of(order.begin(), order.end(), isIt))
        {
            return;
        }
        order.push_back(*found);
        for (const std::string& include : found->includes)
        {
            again(again, include);
        }
    };
    if (!files.empty())
    {
        read(read, files.front().path);
    }
    return order;
}

/// The element that names the included files, those that are there.
template <typename File>
std::string GetIncludesElement(const std::vector<File>& files, const File& file)
{
    std::string text;
    for (const std::string& include : file.includes)
    {
        if (std::any_of(files.begin(), files.end(), [&](const File& other) { return other.path == include; }))
        {
            const auto path =
                std::filesystem::path(include).lexically_relative(std::filesystem::path(file.path).parent_path());
            text += "<Include path=\"" + path.string() + "\"/>\n";
        }
    }
    return text.empty() ? text : "<Includes>\n" + text + "</Includes>\n";
}

/// Makes files of some of the paths, the first among them, that include each other at random.
template <typename File>
std::vector<File> GenerateFiles(Random& random, std::vector<std::string> paths)
{
    std::vector<File> files(1);
    files[0].path = paths.front();
    paths.erase(paths.begin());
    for (std::size_t count = random.Below(paths.size() + 1); count > 0; --count)
    {
        File file;
        file.path = random.Draw(paths);
        // Most are read sooner or later; some include what includes them.
        File& parent = files[random.Below(files.size())];
        if (!random.Chance(5))
        {
            parent.includes.push_back(file.path);
        }
        if (random.Chance(20))
        {
            file.includes.push_back(parent.path);
        }
        files.push_back(std::move(file));
    }
    return files;
}

/// The cases with a file less, but for the root, and those with one file simpler.
template <typename Case, typename File, typename SimplifyFile>
void AppendSimplerFiles(std::vector<Case>& simpler, const Case& sample, std::vector<File> Case::*files,
                        const SimplifyFile& simplifyFile)
{
    for (std::size_t index = 0; index < (sample.*files).size(); ++index)
    {
        if (index > 0)
        {
            simpler.push_back(sample);
            (simpler.back().*files).erase((simpler.back().*files).begin() + static_cast<std::ptrdiff_t>(index));
        }
        std::vector<File> changed;
        simplifyFile(changed, (sample.*files)[index]);
        for (File& file : changed)
        {
            simpler.push_back(sample);
            (simpler.back().*files)[index] = std::move(file);
        }
    }
}

} // namespace Vela::Testing
