#pragma once

#include <cstdint>

/// Storing and restoring state in a transaction. Only other programs of the package run transactions.
namespace Nerix::Common::IO {

class ITransaction;

/// A byte stream with a 64-bit position, which a state is stored into or restored from.
class ISerializer {
public:
    virtual ~ISerializer() = default;

    /// Returns true if data is written, false if it is read.
    virtual bool isStoring() const = 0;

    /// Transfers length bytes at the current position, from data when storing and into it when restoring, and
    /// advances the position by length. Exceptions from transfer propagate; the position is then unchanged.
    void serializeData(std::uint8_t* data, unsigned int length) {
        transfer(m_position, data, length);
        m_position += length;
    }

    virtual void transfer(std::uint64_t position, std::uint8_t* data, unsigned int length) = 0;

private:
    std::uint64_t m_position = 0;
};

/// A storage transaction under way.
class IStoreTransaction {
public:
    virtual ~IStoreTransaction() = default;

    /// Owned by the transaction.
    virtual ISerializer& serializer() = 0;
};

/// An object whose state a storage transaction saves, so that interrupted work can resume.
class ITransactionalEntity {
public:
    virtual ~ITransactionalEntity() = default;

    /// Called after a transaction was saved.
    virtual void transactionSaved(ITransaction* transaction) = 0;

    /// Stores or restores the state through the transaction's serializer.
    virtual void transactionSerialize(IStoreTransaction* transaction) = 0;
};

} // namespace Nerix::Common::IO
