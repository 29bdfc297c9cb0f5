#pragma once

/// Marks what a host may link against; everything else stays hidden in the library.
#if defined(JOINERY_BUILDING_LIBRARY)
#define QB_EXPORT __attribute__((visibility("default")))
#else
#define QB_EXPORT
#endif
