#pragma once

#include <Vela/System/Commons/Io/FileTrust.hpp>

namespace Vela::Testing
{

/// What happens to files that others can change, until the end of a test.
class ScopedTrustPolicy
{
public:
    using TrustedFile = System::Commons::Io::TrustedFile;
    using TrustPolicy = System::Commons::Io::TrustPolicy;

    ScopedTrustPolicy(TrustedFile trustedFile, TrustPolicy policy)
        : use(trustedFile)
        , before(System::Commons::Io::FileTrust::GetPolicy(trustedFile))
    {
        System::Commons::Io::FileTrust::SetPolicy(use, policy);
    }

    ScopedTrustPolicy(const ScopedTrustPolicy&) = delete;
    ScopedTrustPolicy& operator=(const ScopedTrustPolicy&) = delete;

    ~ScopedTrustPolicy()
    {
        System::Commons::Io::FileTrust::SetPolicy(use, before);
    }

private:
    const TrustedFile use;
    const TrustPolicy before;
};

} // namespace Vela::Testing
