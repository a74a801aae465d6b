#include <Vela/Exceptions.hpp>
#include <Vela/System/Kiro/BinaryContract.hpp>

#include <Contract/Release.hpp>

namespace Vela::System::Kiro::Internal::Contract
{

void CheckRelease(const String& path, const DynamicSection& section)
{
    constexpr std::string_view major = BinaryContract::sdkVersion.substr(0, BinaryContract::sdkVersion.find('.'));
    for (const char* library : {"Commons", "Rsc", "Nm", "Kiro"})
    {
        const String prefix = fmt::format("libVela.System.{}.so.", library);
        for (const String& needed : section.needed)
        {
            if (needed.starts_with(prefix) && needed.substr(prefix.size()) != major)
            {
                throw InvalidOperationException("Library '{0}' was linked with {1}, this runtime has {2}{3}: build the "
                                                "library again with the SDK {4}.",
                                                path, needed, prefix, major, BinaryContract::sdkVersion);
            }
        }
    }
}

} // namespace Vela::System::Kiro::Internal::Contract
