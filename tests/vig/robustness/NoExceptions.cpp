#include <cstdio>
#include <cstdlib>

// In this executable no exception may even be created, by the library or by what it calls. (It stands alone, since
// the compilers' headers declare it each in their own way.)
extern "C" [[noreturn]] void __cxa_throw(void*, void*, void (*)(void*)) {
    std::fputs("an exception was thrown\n", stderr);
    std::abort();
}
