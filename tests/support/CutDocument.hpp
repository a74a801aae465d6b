#pragma once

#include "TemporaryDirectory.hpp"

#include <Vela/Exceptions.hpp>

#include <gtest/gtest.h>

#include <string>

namespace Vela::Testing
{

/// Writes a document cut off at each of its bytes in turn, as a crash or a full disk leaves it. Each time `load` must
/// throw an exception of the platform that names the file. In the end the document is whole again and must load.
template <typename Load>
void ExpectEveryCutToBeRefused(const TemporaryDirectory& directory, const std::string& name, const std::string& text,
                               Load&& load)
{
    for (std::size_t size = 0; size < text.size(); ++size)
    {
        const std::string path = directory.Write(name, text.substr(0, size));
        try
        {
            load();
            ADD_FAILURE() << "accepted with " << size << " bytes: " << text.substr(0, size);
        }
        catch (const Exception& exception)
        {
            EXPECT_NE(exception.ToString().find(path), std::string::npos) << size << ": " << exception.ToString();
        }
    }
    directory.Write(name, text);
    EXPECT_NO_THROW(load());
}

} // namespace Vela::Testing
