// Of each allocation a few callers are kept, or half of the time goes by looking for them; what was freed is
// kept for a while, but not until the memory of the machine is full.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "malloc_context_size=4:quarantine_size_mb=16:allocator_may_return_null=1";
}
