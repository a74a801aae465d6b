// A library of another contract, which ends the process that runs any of its code.
#include <Vela/System/Kiro/BinaryContract.hpp>

#include <cstdlib>

namespace
{

using namespace Vela::System::Kiro;

#ifdef OTHER_Version
constexpr auto contractVersion = BinaryContract::contractVersion + 1;
constexpr auto layoutHash = BinaryContract::layoutHash;
#else
constexpr auto contractVersion = BinaryContract::contractVersion;
constexpr auto layoutHash = BinaryContract::layoutHash + 1;
#endif

VELA_NOTE_SECTION constinit const BinaryContract::Note note = BinaryContract::MakeNote(contractVersion, layoutHash);

[[gnu::constructor]] void Initialise()
{
    std::abort();
}

} // namespace
