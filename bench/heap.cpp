// Counts the heap that the library uses: prints one ratio a line, its name and its value apart by a tab.
#include <fmt/format.h>
#include <json/reader.h>
#include <json/value.h>
#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <memory>
#include <string>

#include "bench/Rules.h"
#include "vig/VIGManager.h"

namespace {
std::size_t live = 0;
std::size_t peak = 0;

void* counted(void* memory) {
    live += malloc_usable_size(memory);
    peak = std::max(peak, live);
    return memory;
}
}  // namespace

// These take the place of the C library's, which operator new calls, for the whole executable and the libraries that it
// loads.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void __libc_free(void* memory);

void* malloc(std::size_t size) {
    return counted(__libc_malloc(size));
}
void* calloc(std::size_t count, std::size_t size) {
    return counted(__libc_calloc(count, size));
}
void* realloc(void* memory, std::size_t size) {
    live -= malloc_usable_size(memory);
    return counted(__libc_realloc(memory, size));
}
void free(void* memory) {
    live -= malloc_usable_size(memory);
    __libc_free(memory);
}
}

namespace {

struct Use {
    std::size_t kept;
    std::size_t peak;
};

// Measures what the result of the operation keeps, and the peak of the operation itself.
Use heapOf(const auto& operation) {
    const std::size_t before = live;
    peak = live;
    const auto result = operation();
    return {live - before, peak - before};
}

Use vig(const std::string& text) {
    const Brenta::OS::VIG::VIGManager manager;
    return heapOf([&] { return manager.parseResponse(text); });
}

Use jsoncpp(const std::string& text) {
    return heapOf([&] {
        const Json::CharReaderBuilder builder;
        const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        Json::Value root;
        std::string errors;
        reader->parse(text.data(), text.data() + text.size(), &root, &errors);
        return root;
    });
}

double ratio(std::size_t part, std::size_t whole) {
    return static_cast<double>(part) / static_cast<double>(whole);
}

}  // namespace

int main() {
    for (const std::size_t count : {1, 100, 20'000}) {
        const std::string text = bench::documentOf(count);
        const Use ours = vig(text);
        const Use theirs = jsoncpp(text);
        std::cout << fmt::format("heap/{}/machines against text\t{}\n", count, ratio(ours.kept, text.size()))
                  << fmt::format("heap/{}/peak against jsoncpp\t{}\n", count, ratio(ours.peak, theirs.peak));
    }
}
