#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/Md5Hash.h"
#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/ChainSource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace Nerix::HashFunctions {

namespace {

using Implementations = std::vector<Md5Lanes::Implementation>;

/// Those that this machine can run; none has no lanes and stands for machines without vectors.
Implementations implementations() {
    const Md5Lanes::Implementation best = Md5Lanes::implementation();
    Implementations all{{0, nullptr}, best};
    if (best.count == 16) { all.push_back({8, &Md5Lanes::compress128}); }
    return all;
}

struct Chain {
    std::uint64_t value;
    std::vector<std::string> texts;
};

/// Hands out chains in their order, to at most maxBusy lanes at a time, and stores the value at the end of each.
class Chains final : public ChainSource {
public:
    Chains(const std::vector<Chain>& chains, std::size_t maxBusy)
        : results(chains.size()), m_chains(chains), m_maxBusy(maxBusy) {}

    bool next(std::size_t index, Step& step) override {
        Lane& lane = m_lanes[index];
        if (lane.chain != nullptr && lane.nextText == lane.chain->texts.size()) {
            results[static_cast<std::size_t>(lane.chain - m_chains.data())] = step.value;
            lane.chain = nullptr;
            --m_busy;
        }
        if (lane.chain == nullptr) {
            if (m_next == m_chains.size() || m_busy == m_maxBusy) { return false; }
            lane.chain = &m_chains[m_next++];
            lane.nextText = 0;
            step.value = lane.chain->value;
            ++m_busy;
        }
        // Copied, so that it lies at any address modulo 16.
        const std::string& text = lane.chain->texts[lane.nextText++];
        lane.copy.assign(m_next % 16, 'x').append(text);
        step.data = lane.copy.data() + m_next % 16;
        step.length = static_cast<unsigned int>(text.size());
        return true;
    }

    std::vector<std::uint64_t> results;

private:
    struct Lane {
        const Chain* chain = nullptr;
        std::size_t nextText = 0;
        std::string copy;
    };

    const std::vector<Chain>& m_chains;
    const std::size_t m_maxBusy;
    std::size_t m_next = 0;
    std::size_t m_busy = 0;
    Lane m_lanes[Md5Lanes::maxCount];
};

std::string randomText(std::mt19937_64& random, std::size_t length) {
    std::string text;
    while (text.size() < length) {
        const std::uint64_t bytes = random();
        text.append(reinterpret_cast<const char*>(&bytes), std::min(sizeof bytes, length - text.size()));
    }
    return text;
}

class Md5HashTest : public testing::Test {
protected:
    /// Expects of each chain the value that single steps of the crypto library give.
    void expectRightValues(const std::vector<Chain>& chains, Md5Lanes::Implementation lanes, std::size_t maxBusy) {
        Chains source(chains, maxBusy);
        Md5Hash(lanes).applyChains(source);
        for (std::size_t index = 0; index != chains.size(); ++index) {
            std::uint64_t expected = chains[index].value;
            for (const std::string& text : chains[index].texts) { expected = m_single.apply(expected, text); }
            ASSERT_EQ(source.results[index], expected)
                << "chain " << index << " with " << maxBusy << " of " << lanes.count << " lanes busy";
        }
    }

    std::mt19937_64 random{24}; // NOLINT(cert-msc32-c,cert-msc51-cpp): the same texts in each run

private:
    const Common::Utils::SingletonServiceGuard<Common::IO::OpenSSLInit> m_openSSL{
        Common::Utils::SINGLETON_OPENSSL_INITIALIZER};
    const OpenSSLHash m_single{"md5"};
};

} // namespace

TEST_F(Md5HashTest, ChainsOfOneTextHaveTheRightValueForEachLength) {
    std::vector<Chain> chains;
    for (std::size_t length = 0; length <= 9000; ++length) { chains.push_back({random(), {randomText(random, length)}}); }
    for (const Md5Lanes::Implementation lanes : implementations()) { expectRightValues(chains, lanes, Md5Lanes::maxCount); }
}

TEST_F(Md5HashTest, LongChainsHaveTheRightValueWithAnyNumberOfBusyLanes) {
    std::vector<Chain> chains(100);
    for (Chain& chain : chains) {
        chain.value = random();
        for (std::size_t texts = 1 + random() % 30; texts != 0; --texts) {
            chain.texts.push_back(randomText(random, random() % 3 == 0 ? 4096 : random() % 200));
        }
    }
    for (const Md5Lanes::Implementation lanes : implementations()) {
        for (std::size_t maxBusy = 1; maxBusy <= lanes.count; ++maxBusy) { expectRightValues(chains, lanes, maxBusy); }
    }
}

} // namespace Nerix::HashFunctions
