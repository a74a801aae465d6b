#include "CommandLine.hpp"

int main(int argc, char** argv)
{
    return static_cast<int>(Vela::Kiroctl::CommandLine().Run(argc, argv));
}
