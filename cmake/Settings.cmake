# What every target of our own is compiled with; dependencies are system includes and see none of it.

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
# Version 3 of Boost.Filesystem: the last element of "a/b/" is ".", on which stripTrailingSlashes relies.
# The assert handler: Boost's own checks end in ours, see Common/Utils/Assert.h.
target_compile_definitions(nerix_settings INTERFACE
  BOOST_FILESYSTEM_VERSION=3 BOOST_FILESYSTEM_NO_DEPRECATED BOOST_ENABLE_ASSERT_HANDLER)
# Records and reports name source files as the compiler does: relative, so that they do not carry the builder's path.
target_compile_options(nerix_settings INTERFACE -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
target_link_libraries(nerix_settings INTERFACE Threads::Threads Boost::headers)

add_library(nerix_warnings INTERFACE)
target_compile_options(nerix_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2)
# An error in a git checkout, where we work; only a warning in a release archive, built by who knows which compiler.
if(EXISTS ${PROJECT_SOURCE_DIR}/.git)
  target_compile_options(nerix_warnings INTERFACE -Werror)
endif()

if(NERIX_SANITIZE)
  # GCC takes the sanitizers' own instrumentation of std::function for a use before initialisation.
  target_compile_options(nerix_warnings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_compile_options(nerix_settings INTERFACE
    -fsanitize=${NERIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(nerix_settings INTERFACE -fsanitize=${NERIX_SANITIZE})
endif()
