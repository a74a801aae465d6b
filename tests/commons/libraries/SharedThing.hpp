#pragma once

namespace Vela::Testing
{

/// Known to the test and to a library that it loads, each built with hidden visibility.
struct SharedThing
{
    int number = 0;
};

} // namespace Vela::Testing
