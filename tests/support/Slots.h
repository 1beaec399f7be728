#pragma once

#include <cstddef>
#include <cstring>

namespace support {

// The place of a virtual operation in the table that clients are compiled against; a destructor takes two.
template <typename Operation>
std::size_t slotOf(Operation operation) {
    std::size_t offset = 0;
    std::memcpy(&offset, &operation, sizeof offset);
    return offset / sizeof(void*);
}

}  // namespace support
