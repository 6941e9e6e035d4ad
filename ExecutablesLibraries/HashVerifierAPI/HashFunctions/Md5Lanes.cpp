#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/Md5Lanes.h"

namespace Nerix::HashFunctions::Md5Lanes {

Implementation implementation() {
#if __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
    return {0, nullptr};
#elif defined(NERIX_MD5_LANES_256) // the build contains compress256
    if (__builtin_cpu_supports("avx2")) {
        return {16, &compress256};
    }
    return __builtin_cpu_supports("sse2") ? Implementation{8, &compress128} : Implementation{0, nullptr};
#elif defined(__ARM_NEON)
    return {8, &compress128};
#else
    return {0, nullptr};
#endif
}

} // namespace Nerix::HashFunctions::Md5Lanes
