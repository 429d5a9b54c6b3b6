// What omniORB 4.2.5 loses of what is malformed, in its own functions: references that it
// refuses, texts without an end (of its own: those of calls' arguments are not lost), and
// what it keeps of a request when something malformed comes behind it on its connection.
// Only the function that allocates is known by name: Debian builds the broker without
// frame pointers.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions()
{
    return "leak:omniObjRef::_unMarshal\n"
           "leak:omni::corbalocURIHandler\n"
           "leak:cdrStream::unmarshalRawString\n"
           "leak:omni::giopStrand::acquireServer\n"
           "leak:omni::giopImpl1*::input\n";
}
