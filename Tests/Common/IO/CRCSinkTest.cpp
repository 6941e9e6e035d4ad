#include "Common/IO/CRCSink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace Nerix::Tests {
namespace {

using Common::IO::CRC32Sink;
using Bytes = std::vector<std::uint8_t>;

class MemoryTransaction : public Common::IO::IStoreTransaction, public Common::IO::ISerializer {
public:
    MemoryTransaction(Bytes& record, bool stores) : m_record(record), m_stores(stores) {}

    Common::IO::ISerializer& serializer() override { return *this; }
    bool isStoring() const override { return m_stores; }

protected:
    void transfer(std::uint64_t position, std::uint8_t* data, unsigned int length) override {
        if (m_stores) {
            m_record.resize(std::max<std::size_t>(m_record.size(), position + length));
            std::copy_n(data, length, m_record.data() + position);
        } else {
            std::copy_n(m_record.data() + position, length, data);
        }
    }

private:
    Bytes& m_record;
    bool m_stores;
};

void write(CRC32Sink& sink, const std::string& text) {
    sink.writeChunk(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

TEST(CRCSink, ChecksumsOfKnownData) {
    CRC32Sink sink;
    EXPECT_EQ(sink.checksum(), 0U);
    write(sink, "123456789");
    sink.markEndOfData();
    EXPECT_EQ(sink.checksum(), 0xCBF43926U) << "the published check value";
}

TEST(CRCSink, StateIsFiveBytesAndGoesOnElsewhere) {
    CRC32Sink first;
    write(first, "1234");
    Bytes record;
    MemoryTransaction store(record, true);
    first.transactionSerialize(&store);
    // The CRC-32 of "1234" is 0x9be3e0a3: the register is its complement, and stored with its bits in reverse
    // order.
    std::uint32_t reversed = 0;
    for (int bit = 0; bit < 32; ++bit) {
        reversed |= ((~0x9be3e0a3U >> bit) & 1U) << (31 - bit);
    }
    Bytes expected{0};
    for (int byte = 0; byte < 4; ++byte) {
        expected.push_back(static_cast<std::uint8_t>(reversed >> (8 * byte)));
    }
    EXPECT_EQ(record, expected);

    CRC32Sink second;
    MemoryTransaction restore(record, false);
    second.transactionSerialize(&restore);
    EXPECT_FALSE(second.endOfDataMarked());
    write(second, "56789");
    EXPECT_EQ(second.checksum(), 0xCBF43926U);
}

} // namespace
} // namespace Nerix::Tests
