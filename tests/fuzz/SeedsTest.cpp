#include <FuzzTarget.hpp>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace
{

std::string Read(const std::filesystem::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

} // namespace

/// A seed that breaks what its target asserts ends the process; it is the one that was printed last. One whose name
/// begins with "valid-" must be read to its end.
TEST(FuzzSeeds, AllPassTheirTargets)
{
    ASSERT_FALSE(Vela::Fuzz::FuzzTarget::GetAll().empty());
    for (const auto* target : Vela::Fuzz::FuzzTarget::GetAll())
    {
        std::size_t wholeSeeds = 0;
        for (const auto& seed :
             std::filesystem::directory_iterator(FUZZ_SEEDS_DIRECTORY / std::filesystem::path(target->name)))
        {
            std::cout << seed.path() << std::endl;
            const bool isWhole = target->run(Read(seed.path()));
            wholeSeeds += isWhole ? 1U : 0U;
            EXPECT_TRUE(isWhole || !seed.path().filename().string().starts_with("valid-")) << seed.path();
        }
        // A target that refuses everything at its door checks nothing.
        EXPECT_GT(wholeSeeds, 0U) << target->name;
    }
}
