// Asked for by the leak sanitizer where it is built in. The C library keeps the search path for locales, once for
// each setlocale with LOCPATH.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:argz_add_sep\n";
}
