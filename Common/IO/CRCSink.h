#pragma once

#include "Common/IO/ISink.h"
#include "Common/IO/TransactionalEntity.h"
#include "Common/Utils/Errors/IDebugName.h"

#include <boost/crc.hpp>

#include <cstdint>
#include <cstring>
#include <string>

namespace Nerix::Common::IO {

/// Computes a checksum of the data pushed into it. Used by other programs of the package, and here by
/// NerixCommonUtils. A transaction can store its state and restore it. CRC is an engine of Boost.CRC with
/// reflected 32-bit remainders.
template <class CRC>
class CRCSink : public ISink, public ITransactionalEntity, public Utils::IDebugName {
public:
    void writeChunk(const std::uint8_t* data, std::size_t length) override {
        throwIfEndOfDataMarked();
        m_crc.process_bytes(data, length);
    }

    void markEndOfData() override {
        throwIfEndOfDataMarked();
        m_endOfData = true;
    }

    bool endOfDataMarked() override { return m_endOfData; }

    /// The checksum of the data so far.
    std::uint32_t checksum() const { return m_crc.checksum(); }

    void transactionSaved(ITransaction*) override {}

    /// A record of 5 bytes: the end flag (0 or 1), then the interim remainder with its bits unreflected, in
    /// the machine's byte order. Restoring takes any byte but 0 for a flag that is set, and changes
    /// the sink only when both were read.
    void transactionSerialize(IStoreTransaction* transaction) override {
        ISerializer& serializer = transaction->serializer();
        std::uint8_t endOfData = m_endOfData ? 1 : 0;
        serializer.serializeData(&endOfData, 1);
        std::uint32_t remainder = m_crc.get_interim_remainder();
        std::uint8_t bytes[sizeof remainder];
        std::memcpy(bytes, &remainder, sizeof remainder);
        serializer.serializeData(bytes, sizeof bytes);
        if (!serializer.isStoring()) {
            std::memcpy(&remainder, bytes, sizeof remainder);
            m_endOfData = endOfData != 0;
            m_crc.reset(remainder);
        }
    }

    std::string debugName() const override { return "CRCSink"; }

private:
    bool m_endOfData = false;
    CRC m_crc;
};

/// The standard CRC-32: boost::crc_32_type.
using CRC32Sink = CRCSink<boost::crc_optimal<32, 0x04C11DB7, 0xFFFFFFFF, 0xFFFFFFFF, true, true>>;

} // namespace Nerix::Common::IO
