// Asked for by the address sanitizer. Several times as many executions, for stacks of allocations that are only useful
// to reproduce something with.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "malloc_context_size=1:max_malloc_fill_size=0:quarantine_size_mb=4:allocator_release_to_os_interval_ms=-1";
}
