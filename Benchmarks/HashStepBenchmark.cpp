// One step of a chaining hash function, compared with the same step using OpenSSL directly with a prefetched
// digest and a reused context.

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctions.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include <openssl/evp.h>

namespace Nerix::Benchmarks {
namespace {

void hashStep(benchmark::State& state, const char* name) {
    const IHashFunction& function = HashFunctions::getInstance(name);
    const std::string data(static_cast<std::size_t>(state.range(0)), 'x');
    IHashFunction::hash_t value = 0;
    for (auto step : state) {
        static_cast<void>(step);
        value = function.apply(value, data);
    }
    benchmark::DoNotOptimize(value);
}

void openSslBaseline(benchmark::State& state, const char* name) {
    const std::unique_ptr<EVP_MD, void (*)(EVP_MD*)> digest(EVP_MD_fetch(nullptr, name, nullptr),
                                                            &EVP_MD_free);
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    const std::string data(static_cast<std::size_t>(state.range(0)), 'x');
    unsigned char result[EVP_MAX_MD_SIZE] = {};
    for (auto step : state) {
        static_cast<void>(step);
        unsigned int length = 0;
        EVP_DigestInit_ex(context.get(), digest.get(), nullptr);
        EVP_DigestUpdate(context.get(), result, 8);
        EVP_DigestUpdate(context.get(), data.data(), data.size());
        EVP_DigestFinal_ex(context.get(), result, &length);
    }
    benchmark::DoNotOptimize(result);
}

BENCHMARK_CAPTURE(hashStep, md5, "md5")->Arg(30)->Arg(4096);
BENCHMARK_CAPTURE(openSslBaseline, md5, "md5")->Arg(30)->Arg(4096);
BENCHMARK_CAPTURE(hashStep, sha1, "sha1")->Arg(30)->Arg(4096);
BENCHMARK_CAPTURE(openSslBaseline, sha1, "sha1")->Arg(30)->Arg(4096);

} // namespace
} // namespace Nerix::Benchmarks
