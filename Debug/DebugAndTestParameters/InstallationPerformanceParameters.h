#pragma once

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <string>

namespace Nerix {

/// The mode that transactional writes are forced to use. The storage layer defines the values;
/// InstallationPerformanceParameters only stores them.
enum class ETransactionalRewriteMode : std::int32_t {};

/// Holds tuning values for the installation of updates. The programs here only load and save them. Sizes are
/// in bytes. If an optional value is unset, its user chooses one. DebugAndTestParameters contains one copy,
/// which is loaded and saved with it; see ParametersArchive.h for the XML format. Not thread-safe, except for
/// concurrent reads.
class InstallationPerformanceParameters {
public:
    /// Returns the built-in values.
    static const InstallationPerformanceParameters& getDefaultParameters();

    /// Reads the parameters from a separate XML file. If that fails, logs a warning and keeps the fields read
    /// before the failure.
    void load(const std::string& path);

    /// Writes the parameters to a separate XML file. If that fails, logs a warning.
    void save(const std::string& path) const;

    boost::optional<std::uint32_t> getFlashStreamBufferSize() const { return m_flashStreamBufferSize; }
    void setFlashStreamBufferSize(const boost::optional<std::uint32_t>& value) {
        m_flashStreamBufferSize = value;
    }
    boost::optional<std::uint32_t> getFlashSinkBufferSize() const { return m_flashSinkBufferSize; }
    void setFlashSinkBufferSize(const boost::optional<std::uint32_t>& value) {
        m_flashSinkBufferSize = value;
    }
    std::uint32_t getNetworkStreamBufferSize() const { return m_networkStreamBufferSize; }
    void setNetworkStreamBufferSize(std::uint32_t value) { m_networkStreamBufferSize = value; }
    boost::optional<std::uint32_t> getUSBFileStreamBufferSize() const { return m_usbFileStreamBufferSize; }
    void setUSBFileStreamBufferSize(const boost::optional<std::uint32_t>& value) {
        m_usbFileStreamBufferSize = value;
    }
    std::uint32_t getDecrypterMaxInputBufferSize() const { return m_decrypterMaxInputBufferSize; }
    void setDecrypterMaxInputBufferSize(std::uint32_t value) { m_decrypterMaxInputBufferSize = value; }
    std::uint32_t getDecompressorInputChunkSize() const { return m_decompressorInputChunkSize; }
    void setDecompressorInputChunkSize(std::uint32_t value) { m_decompressorInputChunkSize = value; }
    std::uint32_t getDecompressorOutputBufferSize() const { return m_decompressorOutputBufferSize; }
    void setDecompressorOutputBufferSize(std::uint32_t value) { m_decompressorOutputBufferSize = value; }
    std::uint32_t getInstallationChunkSize() const { return m_installationChunkSize; }
    void setInstallationChunkSize(std::uint32_t value) { m_installationChunkSize = value; }
    std::uint32_t getVerificationChunkSize() const { return m_verificationChunkSize; }
    void setVerificationChunkSize(std::uint32_t value) { m_verificationChunkSize = value; }
    bool getEnableInstallationResuming() const { return m_enableInstallationResuming; }
    void setEnableInstallationResuming(bool value) { m_enableInstallationResuming = value; }
    boost::optional<ETransactionalRewriteMode> getForceInstallationRewriteMode() const {
        return m_forceInstallationRewriteMode;
    }
    void setForceInstallationRewriteMode(const boost::optional<ETransactionalRewriteMode>& value) {
        m_forceInstallationRewriteMode = value;
    }
    boost::optional<ETransactionalRewriteMode> getForceVerificationRewriteMode() const {
        return m_forceVerificationRewriteMode;
    }
    void setForceVerificationRewriteMode(const boost::optional<ETransactionalRewriteMode>& value) {
        m_forceVerificationRewriteMode = value;
    }
    std::int32_t getInstallationWorkerThreads() const { return m_installationWorkerThreads; }
    void setInstallationWorkerThreads(std::int32_t value) { m_installationWorkerThreads = value; }
    bool getAllowBpsProviders() const { return m_allowBpsProviders; }
    void setAllowBpsProviders(bool value) { m_allowBpsProviders = value; }
    bool getParallelizeReads() const { return m_parallelizeReads; }
    void setParallelizeReads(bool value) { m_parallelizeReads = value; }
    bool getParallelizeWrites() const { return m_parallelizeWrites; }
    void setParallelizeWrites(bool value) { m_parallelizeWrites = value; }
    std::int32_t getNumberOfBuffersForParallelization() const { return m_numberOfBuffersForParallelization; }
    void setNumberOfBuffersForParallelization(std::int32_t value) {
        m_numberOfBuffersForParallelization = value;
    }
    std::uint32_t getBuffersSizeForParallelization() const { return m_buffersSizeForParallelization; }
    void setBuffersSizeForParallelization(std::uint32_t value) { m_buffersSizeForParallelization = value; }
    std::uint32_t getNumberOfMBUCommandProcessedAtOnce() const { return m_numberOfMBUCommandProcessedAtOnce; }
    void setNumberOfMBUCommandProcessedAtOnce(std::uint32_t value) {
        m_numberOfMBUCommandProcessedAtOnce = value;
    }
    // Stored as mbuCreateFileCommandsPerSecond and mbuDeleteFileCommandsPerSecond.
    float getMBUProcessedCommandsPerSecond() const { return m_mbuCreateFileCommandsPerSecond; }
    void setMBUProcessedCommandsPerSecond(float value) { m_mbuCreateFileCommandsPerSecond = value; }
    float getMBUVerifiedCommandsPerSecond() const { return m_mbuDeleteFileCommandsPerSecond; }
    void setMBUVerifiedCommandsPerSecond(float value) { m_mbuDeleteFileCommandsPerSecond = value; }
    float getVerificationInitialBpsEstimate() const { return m_verificationInitialBpsEstimate; }
    void setVerificationInitialBpsEstimate(float value) { m_verificationInitialBpsEstimate = value; }
    float getOTADownloadingProgressScale() const { return m_otaDownloadingProgressScale; }
    void setOTADownloadingProgressScale(float value) { m_otaDownloadingProgressScale = value; }
    float getVerificationScale() const { return m_verificationScale; }
    void setVerificationScale(float value) { m_verificationScale = value; }

private:
    friend class ParametersArchive;

    /// Visits the stored fields in file order. The two decompressor values are not stored.
    template <class Self, class Visitor>
    static void visit(Self& self, Visitor& visitor) {
        visitor("flashStreamBufferSize", self.m_flashStreamBufferSize);
        visitor("flashSinkBufferSize", self.m_flashSinkBufferSize);
        visitor("networkStreamBufferSize", self.m_networkStreamBufferSize);
        visitor("usbFileStreamBufferSize", self.m_usbFileStreamBufferSize);
        visitor("decrypterMaxInputBufferSize", self.m_decrypterMaxInputBufferSize);
        visitor("installationChunkSize", self.m_installationChunkSize);
        visitor("verificationChunkSize", self.m_verificationChunkSize);
        visitor("enableInstallationResuming", self.m_enableInstallationResuming);
        visitor("forceInstallationRewriteMode", self.m_forceInstallationRewriteMode);
        visitor("forceVerificationRewriteMode", self.m_forceVerificationRewriteMode);
        visitor("installationWorkerThreads", self.m_installationWorkerThreads);
        visitor("allowBpsProviders", self.m_allowBpsProviders);
        visitor("parallelizeReads", self.m_parallelizeReads);
        visitor("parallelizeWrites", self.m_parallelizeWrites);
        visitor("numberOfBuffersForParallelization", self.m_numberOfBuffersForParallelization);
        visitor("buffersSizeForParallelization", self.m_buffersSizeForParallelization);
        visitor("numberOfMBUCommandProcessedAtOnce", self.m_numberOfMBUCommandProcessedAtOnce);
        visitor("mbuCreateFileCommandsPerSecond", self.m_mbuCreateFileCommandsPerSecond);
        visitor("mbuDeleteFileCommandsPerSecond", self.m_mbuDeleteFileCommandsPerSecond);
        visitor("verificationInitialBpsEstimate", self.m_verificationInitialBpsEstimate);
        visitor("otaDownloadingProgressScale", self.m_otaDownloadingProgressScale);
        visitor("verificationScale", self.m_verificationScale);
    }

    boost::optional<std::uint32_t> m_flashStreamBufferSize;
    boost::optional<std::uint32_t> m_flashSinkBufferSize;
    std::uint32_t m_networkStreamBufferSize = 1048576;
    boost::optional<std::uint32_t> m_usbFileStreamBufferSize;
    std::uint32_t m_decrypterMaxInputBufferSize = 65536;
    std::uint32_t m_decompressorInputChunkSize = 262144;
    std::uint32_t m_decompressorOutputBufferSize = 1048576;
    std::uint32_t m_installationChunkSize = 1048576;
    std::uint32_t m_verificationChunkSize = 1048576;
    bool m_enableInstallationResuming = true;
    boost::optional<ETransactionalRewriteMode> m_forceInstallationRewriteMode;
    boost::optional<ETransactionalRewriteMode> m_forceVerificationRewriteMode;
    std::int32_t m_installationWorkerThreads = 0;
    bool m_allowBpsProviders = true;
    bool m_parallelizeReads = true;
    bool m_parallelizeWrites = true;
    std::int32_t m_numberOfBuffersForParallelization = 4;
    std::uint32_t m_buffersSizeForParallelization = 262144;
    std::uint32_t m_numberOfMBUCommandProcessedAtOnce = 10;
    float m_mbuCreateFileCommandsPerSecond = 100.0F;
    float m_mbuDeleteFileCommandsPerSecond = 100.0F;
    float m_verificationInitialBpsEstimate = 2e8F;
    float m_otaDownloadingProgressScale = 30.0F;
    float m_verificationScale = 0.2F;
};

/// Returns the copy in the loaded DebugAndTestParameters. Throws like Common::getDebugAndTestParameters.
InstallationPerformanceParameters& getInstallationPerformanceParameters();

} // namespace Nerix
