#include "CommandLine.hpp"

int main(int argc, char** argv)
{
    return static_cast<int>(Vela::Kiroctl::RunCommandLine(argc, argv));
}
