#include "Common/Utils/ProcessLimits.h"

#include <algorithm>
#include <cstddef>

#include <malloc.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

namespace Nerix::Common::Utils {

void adaptToProcessLimits() {
    constexpr int maxHeaps = 8;
    const int cores = static_cast<int>(std::clamp(::sysconf(_SC_NPROCESSORS_ONLN), 1L, long{maxHeaps}));
    rlimit space{};
    const bool isLimited = ::getrlimit(RLIMIT_AS, &space) == 0 && space.rlim_cur != RLIM_INFINITY;
    ::mallopt(M_ARENA_MAX, isLimited ? 1 : cores);
    pthread_attr_t attributes;
    if (::pthread_attr_init(&attributes) == 0) {
        ::pthread_attr_setstacksize(&attributes, std::size_t{1} << 20U);
        ::pthread_setattr_default_np(&attributes);
        ::pthread_attr_destroy(&attributes);
    }
}

} // namespace Nerix::Common::Utils
