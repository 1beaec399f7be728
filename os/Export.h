#pragma once

// The library is built with hidden visibility; VIG_EXPORT marks what a client may link against.
#define VIG_EXPORT __attribute__((visibility("default")))
