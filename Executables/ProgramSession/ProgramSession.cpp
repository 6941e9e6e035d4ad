#include "Executables/ProgramSession/ProgramSession.h"

#include "Common/Debug/ThreadDebug.h"
#include "Common/Logging/LoggingClass.h"
#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "Platform/Product/IProductInfo.h"

#include <boost/thread/thread_only.hpp>

namespace Nerix {

namespace {

/// Prepares logging and assertions, which OpenSSL's initialization may use. Returns programName.
const char* prepareProcess(const char* programName) {
    Common::Logging::LoggingClass::init(programName);
    Common::Debug::ThreadDebug::registerMainThreadId(boost::this_thread::get_id());
    return programName;
}

} // namespace

ProgramSession::ProgramSession(const char* programName)
    : m_programName(prepareProcess(programName)), m_openSSL(Common::Utils::SINGLETON_OPENSSL_INITIALIZER) {}

void ProgramSession::loadProductAndParameters() const {
    Platform::IProductInfo::initializeProduct(Platform::DEFAULT_PRODUCT);
    Common::DebugAndTestParameters::loadDebugAndTestParameters(m_programName);
}

} // namespace Nerix
