// What the sanitizers are to overlook: findings in libraries that were built without
// them. Each line has its reason.

extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();
const char* __tsan_default_suppressions()
{
    return "";
}

extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions()
{
    return "";
}
