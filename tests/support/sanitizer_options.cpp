// What the sanitizers are to overlook: findings in libraries that were built without
// them, and in generated code. Each line has its reason.

extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();
const char* __tsan_default_suppressions()
{
    // The IDL compiler's code makes each interface's nil reference at its first use: it
    // looks at the pointer without the lock that it then makes it under.
    return "race:Velmo::*::_nil\n";
}

extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions()
{
    return "";
}
