// applyChains gives each busy lane a span of contiguous blocks, and compresses as many blocks of all lanes at
// once as the shortest span has. Lanes that have reached the end of their span then get the next span, and
// those that have reached the end of their step get the next step from the source.
//
// The message of a step is the old value (8 bytes) and the data, then the padding of RFC 1321. Only its first
// block and its last one or two are copied; the blocks between are read in place.

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/Md5Hash.h"

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/ChainSource.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace Nerix::HashFunctions {

namespace {

using hash_t = IHashFunction::hash_t;
using Md5Lanes::blockSize;

constexpr std::uint32_t initialState[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};

/// The message of one step, as spans of blocks. All numbers are little-endian, as on every machine that has
/// lanes.
class Message {
public:
    /// Starts with the first span. The data must stay valid until the last span has been compressed.
    void begin(const ChainSource::Step& step) {
        m_data = reinterpret_cast<const std::uint8_t*>(step.data);
        m_left = step.length;
        m_bits = (step.length + sizeof step.value) * 8;
        m_isPadded = false;
        std::memcpy(m_copied, &step.value, sizeof step.value);
        const std::size_t room = blockSize - sizeof step.value;
        if (m_left < room) {
            endWith(sizeof step.value);
            return;
        }
        copyTo(sizeof step.value, room);
        m_span = m_copied;
        m_spanBlocks = 1;
    }

    /// Moves to the next span. Returns false after the last one.
    bool advance() {
        if (m_isPadded) {
            return false;
        }
        m_spanBlocks = m_left / blockSize;
        if (m_spanBlocks == 0) {
            endWith(0);
            return true;
        }
        m_span = m_data;
        m_data += m_spanBlocks * blockSize;
        m_left -= m_spanBlocks * blockSize;
        return true;
    }

    const std::uint8_t* span() const { return m_span; }
    std::size_t spanBlocks() const { return m_spanBlocks; }

private:
    void copyTo(std::size_t offset, std::size_t length) {
        if (length != 0) { // an empty text may have no data
            std::memcpy(m_copied + offset, m_data, length);
        }
        m_data += length;
        m_left -= length;
    }

    /// Builds the last span: `used` bytes that have been copied, the rest of the data, the padding.
    void endWith(std::size_t used) {
        const std::size_t end = used + m_left;
        copyTo(used, m_left);
        m_spanBlocks = end + 1 + sizeof m_bits <= blockSize ? 1 : 2;
        const std::size_t bitsAt = m_spanBlocks * blockSize - sizeof m_bits;
        m_copied[end] = 0x80;
        std::memset(m_copied + end + 1, 0, bitsAt - end - 1);
        std::memcpy(m_copied + bitsAt, &m_bits, sizeof m_bits);
        m_span = m_copied;
        m_isPadded = true;
    }

    const std::uint8_t* m_data = nullptr; ///< what is not yet in a span
    std::size_t m_left = 0;               ///< bytes of it
    std::uint64_t m_bits = 0;             ///< length of the message
    bool m_isPadded = false;              ///< this is the last span
    const std::uint8_t* m_span = nullptr;
    std::size_t m_spanBlocks = 0;
    std::uint8_t m_copied[2 * blockSize];
};

/// Returns the last 8 bytes of the digest as a big-endian number.
hash_t valueOf(const Md5Lanes::States& states, std::size_t lane) {
    return hash_t{__builtin_bswap32(states.words[2][lane])} << 32U | __builtin_bswap32(states.words[3][lane]);
}

class Lanes {
public:
    Lanes(const OpenSSLHash& function, Md5Lanes::Implementation implementation, ChainSource& source)
        : m_function(function), m_implementation(implementation), m_source(source) {}

    /// Computes steps until the source has nothing for any lane.
    void run() {
        while (startSteps()) {
            Lane& lane = anyBusyLane();
            if (m_busyCount == 1 && lane.isAtBegin) {
                takeWholeStep(lane);
            } else {
                compressShortestSpan();
            }
        }
    }

private:
    enum class State { idle, busy, finished };

    struct Lane {
        State state = State::idle;
        bool isAtBegin = false; ///< nothing of the step has been compressed
        ChainSource::Step step;
        Message message;
    };

    /// Returns false if no lane is busy afterwards.
    bool startSteps() {
        for (std::size_t index = 0; m_finishedCount != 0; ++index) {
            if (m_lanes[index].state == State::finished) {
                --m_finishedCount;
                start(index);
            }
        }
        // If there is nothing for one idle lane, there is nothing for the others.
        bool hasMore = true;
        for (std::size_t index = 0; hasMore && m_busyCount != m_implementation.count; ++index) {
            hasMore = m_lanes[index].state != State::idle || start(index);
        }
        return m_busyCount != 0;
    }

    /// Gets the lane's next step from the source. Returns false if there is none.
    bool start(std::size_t index) {
        Lane& lane = m_lanes[index];
        lane.state = State::idle;
        if (!m_source.next(index, lane.step)) {
            return false;
        }
        lane.state = State::busy;
        lane.isAtBegin = true;
        lane.message.begin(lane.step);
        for (std::size_t word = 0; word != 4; ++word) {
            m_states.words[word][index] = initialState[word];
        }
        takeSpan(index);
        ++m_busyCount;
        return true;
    }

    void takeSpan(std::size_t index) {
        m_begins[index] = m_lanes[index].message.span();
        m_blocks[index] = m_lanes[index].message.spanBlocks();
    }

    Lane& anyBusyLane() {
        return *std::find_if(std::begin(m_lanes), std::end(m_lanes),
                             [](const Lane& lane) { return lane.state == State::busy; });
    }

    void finish(Lane& lane, hash_t value) {
        lane.step.value = value;
        lane.state = State::finished;
        --m_busyCount;
        ++m_finishedCount;
    }

    /// Computes the step with the crypto library, which is faster than a single busy lane.
    void takeWholeStep(Lane& lane) {
        finish(lane, m_function.apply(lane.step.value, lane.step.length, lane.step.data));
    }

    void compressShortestSpan() {
        std::size_t blocks = SIZE_MAX;
        std::size_t used = 0;
        const std::uint8_t* anySpan = nullptr;
        for (std::size_t index = 0; index != m_implementation.count; ++index) {
            if (m_lanes[index].state == State::busy) {
                blocks = std::min(blocks, m_blocks[index]);
                used = index + 1;
                anySpan = m_begins[index];
            }
        }
        for (std::size_t index = 0; index != m_implementation.count; ++index) {
            if (m_lanes[index].state != State::busy) {
                m_begins[index] = anySpan; // its result is ignored
            }
        }
        m_implementation.compress(m_states, m_begins, blocks, used);
        for (std::size_t index = 0; index != m_implementation.count; ++index) {
            if (m_lanes[index].state == State::busy) {
                advance(index, blocks);
            }
        }
    }

    void advance(std::size_t index, std::size_t blocks) {
        Lane& lane = m_lanes[index];
        lane.isAtBegin = false;
        m_begins[index] += blocks * blockSize;
        m_blocks[index] -= blocks;
        if (m_blocks[index] != 0) {
            return;
        }
        if (lane.message.advance()) {
            takeSpan(index);
        } else {
            finish(lane, valueOf(m_states, index));
        }
    }

    const OpenSSLHash& m_function;
    const Md5Lanes::Implementation m_implementation;
    ChainSource& m_source;
    std::size_t m_busyCount = 0;
    std::size_t m_finishedCount = 0;
    Md5Lanes::States m_states{};
    const std::uint8_t* m_begins[Md5Lanes::maxCount] = {};
    std::size_t m_blocks[Md5Lanes::maxCount] = {}; ///< left of the lane's span
    Lane m_lanes[Md5Lanes::maxCount];
};

} // namespace

void Md5Hash::applyChains(ChainSource& source) const {
    if (m_implementation.count == 0) {
        OpenSSLHash::applyChains(source);
    } else {
        Lanes(*this, m_implementation, source).run();
    }
}

} // namespace Nerix::HashFunctions
