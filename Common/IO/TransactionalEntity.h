#pragma once

#include <cstdint>

/// Stores and restores state in transactions, which only other programs of the package run.
namespace Nerix::Common::IO {

class ITransaction;

/// A byte stream with a 64-bit position, to which state is stored or from which it is restored.
class ISerializer {
public:
    virtual ~ISerializer() = default;

    /// Returns true when storing, false when restoring.
    virtual bool isStoring() const = 0;

    /// Transfers length bytes at the current position (from data when storing, into data when restoring),
    /// then advances the position by length. If transfer throws, the position is unchanged.
    void serializeData(std::uint8_t* data, unsigned int length) {
        transfer(m_position, data, length);
        m_position += length;
    }

    virtual void transfer(std::uint64_t position, std::uint8_t* data, unsigned int length) = 0;

private:
    std::uint64_t m_position = 0;
};

/// A storage transaction in progress.
class IStoreTransaction {
public:
    virtual ~IStoreTransaction() = default;

    /// Returns the serializer, which the transaction owns.
    virtual ISerializer& serializer() = 0;
};

/// An object whose state storage transactions save, so that interrupted work can be resumed.
class ITransactionalEntity {
public:
    virtual ~ITransactionalEntity() = default;

    /// Called after a transaction has been saved.
    virtual void transactionSaved(ITransaction* transaction) = 0;

    /// Stores or restores the state through the transaction's serializer.
    virtual void transactionSerialize(IStoreTransaction* transaction) = 0;
};

} // namespace Nerix::Common::IO
