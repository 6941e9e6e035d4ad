#include "Common/Utils/ProcessLimits.h"

#include <cstddef>

#include <malloc.h>
#include <pthread.h>
#include <sys/resource.h>

namespace Nerix::Common::Utils {

void adaptToProcessLimits() {
    rlimit space{};
    if (::getrlimit(RLIMIT_AS, &space) == 0 && space.rlim_cur != RLIM_INFINITY) {
        ::mallopt(M_ARENA_MAX, 1);
    }
    pthread_attr_t attributes;
    if (::pthread_attr_init(&attributes) == 0) {
        ::pthread_attr_setstacksize(&attributes, std::size_t{1} << 20U);
        ::pthread_setattr_default_np(&attributes);
        ::pthread_attr_destroy(&attributes);
    }
}

} // namespace Nerix::Common::Utils
