// A plain shared object: it can be loaded but makes no components.

extern "C" __attribute__((visibility("default"))) int GetAnswer()
{
    return 42;
}
