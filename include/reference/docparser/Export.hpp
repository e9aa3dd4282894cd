#pragma once

// The library is built with hidden symbols; its public API is marked with this macro.
#define REFDOC_API __attribute__((visibility("default")))
