# Compiler settings for all our own targets; dependencies are system includes and unaffected.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(Boost_USE_STATIC_LIBS OFF)
find_package(Threads REQUIRED)
find_package(Boost REQUIRED CONFIG COMPONENTS headers chrono filesystem program_options serialization thread)
find_package(OpenSSL 3 REQUIRED COMPONENTS Crypto)

add_library(nerix_settings INTERFACE)
target_include_directories(nerix_settings INTERFACE ${PROJECT_SOURCE_DIR})
# Version 3 of Boost.Filesystem: the last element of "a/b/" is ".", on which stripTrailingSlashes relies. The assert handler:
# Boost's own checks end in ours, see Common/Utils/Errors/Assert.h. 64-bit file sizes and inode numbers on 32-bit machines.
target_compile_definitions(nerix_settings INTERFACE
  _FILE_OFFSET_BITS=64 BOOST_FILESYSTEM_VERSION=3 BOOST_FILESYSTEM_NO_DEPRECATED BOOST_ENABLE_ASSERT_HANDLER)
# Log records and reports contain source file names; keep them relative, without the builder's path.
target_compile_options(nerix_settings INTERFACE -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
target_link_libraries(nerix_settings INTERFACE Threads::Threads Boost::headers)

# Hardening flags, set explicitly because compilers' defaults differ.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
target_compile_options(nerix_settings INTERFACE -fstack-protector-strong)
target_link_options(nerix_settings INTERFACE -Wl,-z,relro -Wl,-z,now)
if(NOT NERIX_SANITIZE) # _FORTIFY_SOURCE would hide these calls from the sanitizers
  target_compile_options(nerix_settings INTERFACE
    $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()

# Threads share 64-bit counters; some 32-bit machines need libatomic for them.
include(CheckCXXSourceCompiles)
check_cxx_source_compiles(
  "#include <atomic>\n#include <cstdint>\nint main(int argc, char**) { std::atomic<std::uint64_t> a{0}; a = argc; return a.load() == 0; }"
  NERIX_HAS_64_BIT_ATOMICS)
if(NOT NERIX_HAS_64_BIT_ATOMICS)
  target_link_libraries(nerix_settings INTERFACE atomic)
endif()

add_library(nerix_warnings INTERFACE)
target_compile_options(nerix_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2)
# Warnings are errors in a git checkout, but not in a release archive, which may meet any compiler.
if(EXISTS ${PROJECT_SOURCE_DIR}/.git)
  target_compile_options(nerix_warnings INTERFACE -Werror)
endif()

if(NERIX_SANITIZE)
  # GCC mistakes the sanitizers' instrumentation of std::function for use before initialisation.
  target_compile_options(nerix_warnings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_compile_options(nerix_settings INTERFACE
    -fsanitize=${NERIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(nerix_settings INTERFACE -fsanitize=${NERIX_SANITIZE})
endif()
