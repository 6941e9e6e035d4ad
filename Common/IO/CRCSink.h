#pragma once

#include "Common/IO/ISink.h"
#include "Common/IO/TransactionalEntity.h"
#include "Common/Utils/Errors/IDebugName.h"

#include <boost/crc.hpp>

#include <cstdint>
#include <cstring>
#include <string>

namespace Nerix::Common::IO {

/// Computes a checksum of the data written to it. A transaction can store and restore its state. CRC is a
/// class of Boost.CRC with a reflected 32-bit remainder. Used by NerixCommonUtils and by other
/// programs of the package.
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

    /// Returns the checksum of the data written so far.
    std::uint32_t checksum() const { return m_crc.checksum(); }

    void transactionSaved(ITransaction*) override {}

    /// Stores or restores 5 bytes: the end flag (0 or 1), then the interim remainder, unreflected, in the
    /// machine's byte order. When restoring, any nonzero byte sets the flag, and the sink changes only after
    /// both parts have been read.
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

/// Computes the standard CRC-32.
using CRC32Sink = CRCSink<boost::crc_32_type>;

} // namespace Nerix::Common::IO
