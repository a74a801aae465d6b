extern "C" __attribute__((visibility("default"))) int DependencyEntry()
{
    return 1;
}
