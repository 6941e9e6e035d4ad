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

TEST(CRCSink, StateIsFiveBytesAndGoesOnElsewhere) {
    CRC32Sink first;
    EXPECT_EQ(first.checksum(), 0U);
    write(first, "1234");
    Bytes record;
    MemoryTransaction store(record, true);
    first.transactionSerialize(&store);
    // The CRC-32 of "1234" is 0x9be3e0a3: the register is its complement, stored with its bits in reverse order.
    EXPECT_EQ(record, (Bytes{0, 0x26, 0x38, 0xf8, 0x3a}));

    CRC32Sink second;
    MemoryTransaction restore(record, false);
    second.transactionSerialize(&restore);
    write(second, "56789");
    second.markEndOfData();
    EXPECT_EQ(second.checksum(), 0xCBF43926U) << "the published check value of 123456789";
}

} // namespace
} // namespace Nerix::Tests
