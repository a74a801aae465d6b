// A library whose initialiser takes its process with it.

#include <csignal>

namespace
{

const int crashed = raise(SIGSEGV);

} // namespace
