// A library of the first SDK generation, known by the name of its entry function.

extern "C" __attribute__((visibility("default"))) void DynamicLibrary_Main()
{
}
