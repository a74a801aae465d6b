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

/// A seed that breaks what its target asserts ends the process; it is the one that was printed last.
TEST(FuzzSeeds, AllPassTheirTargets)
{
    ASSERT_FALSE(Vela::Fuzz::FuzzTarget::GetAll().empty());
    for (const auto* target : Vela::Fuzz::FuzzTarget::GetAll())
    {
        std::size_t seeds = 0;
        for (const auto& seed :
             std::filesystem::directory_iterator(FUZZ_SEEDS_DIRECTORY / std::filesystem::path(target->name)))
        {
            std::cout << seed.path() << std::endl;
            target->run(Read(seed.path()));
            ++seeds;
        }
        EXPECT_GT(seeds, 0U) << target->name;
    }
}
