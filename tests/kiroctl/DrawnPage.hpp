#pragma once

#include <TestSystem.hpp>
#include <gtest/gtest.h>

#include <cstddef>
#include <regex>
#include <string>

namespace Vela::Testing
{

/// Checks that a picture can be read, and that every box, and what every loop keeps to, lies on its page.
/// @return the number of boxes, the page's own among them
inline std::size_t CheckDrawnPage(const TemporaryDirectory& directory, const std::string& svg)
{
    StartedProcess lint("/usr/bin/xmllint", {"--noout", directory.Write("page.svg", svg)});
    EXPECT_EQ(lint.AwaitEnd(), 0) << lint.GetOutput();
    std::smatch page;
    EXPECT_TRUE(std::regex_search(svg, page, std::regex(R"re(viewBox="0 0 ([0-9]+) ([0-9]+)")re")));
    const double width = std::stod(page[1]);
    const double height = std::stod(page[2]);
    const std::regex box(
        R"re(<rect (?:class="[a-z]+" )?(?:x="([0-9.]+)" y="([0-9.]+)" )?width="([0-9.]+)" height="([0-9.]+)")re");
    std::size_t boxes = 0;
    for (std::sregex_iterator found(svg.begin(), svg.end(), box), end; found != end; ++found, ++boxes)
    {
        const auto number = [&](std::size_t group)
        {
            return (*found)[group].matched ? std::stod((*found)[group]) : 0.0;
        };
        EXPECT_LE(number(1) + number(3), width) << found->str();
        EXPECT_LE(number(2) + number(4), height) << found->str();
    }
    const std::regex loop(R"re(class="use" d="M[0-9.]+ [0-9.]+ C([0-9.]+) )re");
    for (std::sregex_iterator found(svg.begin(), svg.end(), loop), end; found != end; ++found)
    {
        EXPECT_LE(std::stod((*found)[1]), width) << found->str();
    }
    return boxes;
}

} // namespace Vela::Testing
