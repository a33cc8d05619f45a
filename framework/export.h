/// Which names the shared libraries hand out.
///
/// Everything is hidden unless marked. The mark stands on the class or class template itself: on a later
/// explicit instantiation g++ ignores it.
#pragma once

#define ZELK_EXPORT __attribute__((visibility("default")))
