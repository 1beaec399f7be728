#include "fuzz/JsonMutator.h"

// For the targets whose input is one JSON text.

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed) {
    return fuzz::putInput(data, fuzz::mutatedJson(std::string(reinterpret_cast<const char*>(data), size), most, seed),
                          most);
}
