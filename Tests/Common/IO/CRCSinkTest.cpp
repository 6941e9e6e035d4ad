#include "Common/IO/CRCSink.h"

#include "Tests/Fakes/Report.h"

#include <gtest/gtest.h>

#include <vector>

namespace Nerix::Tests {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Stores into bytes, or restores what is there.
class Record final : public Common::IO::IStoreTransaction, public Common::IO::ISerializer {
public:
    explicit Record(bool isStoring, Bytes content = {}) : bytes(std::move(content)), m_isStoring(isStoring) {}
    Common::IO::ISerializer& serializer() override { return *this; }
    bool isStoring() const override { return m_isStoring; }
    void transfer(std::uint64_t position, std::uint8_t* data, unsigned int length) override {
        bytes.resize(std::max<std::size_t>(bytes.size(), position + length));
        std::uint8_t* const here = bytes.data() + position;
        m_isStoring ? std::copy_n(data, length, here) : std::copy_n(here, length, data);
    }
    Bytes bytes;

private:
    const bool m_isStoring;
};

void write(Common::IO::CRC32Sink& sink, const std::string& text) {
    sink.writeChunk(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

TEST(CRCSink, StoredStateGoesOnInAnotherSink) {
    Common::IO::CRC32Sink whole;
    EXPECT_EQ(whole.checksum(), 0U);
    write(whole, "123456789");
    EXPECT_EQ(whole.checksum(), 0xCBF43926U) << "the published check value";

    Common::IO::CRC32Sink first;
    write(first, "1234");
    Record stored(true);
    first.transactionSerialize(&stored);
    // zlib.crc32(b"1234") ^ 0xffffffff with its 32 bits reversed, least significant byte first.
    EXPECT_EQ(stored.bytes, (Bytes{0, 0x26, 0x38, 0xf8, 0x3a}));
    Common::IO::CRC32Sink second;
    Record restored(false, stored.bytes);
    second.transactionSerialize(&restored);
    write(second, "56789");
    EXPECT_EQ(second.checksum(), whole.checksum());

    second.markEndOfData();
    Record ended(true);
    second.transactionSerialize(&ended);
    EXPECT_EQ(ended.bytes[0], 1);
    Record again(false, ended.bytes);
    first.transactionSerialize(&again);
    EXPECT_TRUE(first.endOfDataMarked());
    for (const auto& late : {std::function<void()>([&] { write(first, ""); }), {[&] { first.markEndOfData(); }}}) {
        const std::string report = reportOf(late);
        EXPECT_TRUE(has(report, "EndOfDataMarkedException") && has(report, "] = CRCSink\n")) << report;
    }
}

} // namespace
} // namespace Nerix::Tests
